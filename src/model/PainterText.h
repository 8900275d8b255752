#pragma once

#include <QPointF>
#include <QVector>
#include <QSizeF>
#include <QString>

namespace Plugin {

// The painter text of objects: the JSON that keeps a canvas shape in the file.
// Numbers are quoted with six decimals; anything unreadable gives the defaults.
class PainterText
{
public:
    // "width" and "height", 80 by 40 when missing or unreadable.
    static QSizeF ReadSize(const QString& painter);
    // "points", up to the first point with an empty x or y; the default hexagon
    // (100 by 100) when none is read.
    static QVector<QPointF> ReadPoints(const QString& painter);
    static QString SizeText(double width, double height);
    static QString PointsText(const QVector<QPointF>& points);
};

} // namespace Plugin
