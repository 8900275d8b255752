#include "model/PainterText.h"

#include "HostCatalog/GetParamValue.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace Plugin {

namespace {

// False when painter is not a JSON object; then the defaults apply.
bool parse(const QString& painter, QJsonObject* object)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(painter.toLocal8Bit(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    *object = document.object();
    return true;
}

} // namespace

QSizeF PainterText::ReadSize(const QString& painter)
{
    QSizeF size(80, 40);
    QJsonObject object;
    if (!parse(painter, &object))
        return size;
    // A key that is missing reads as empty text, which converts to 0.
    size.setWidth(GetParamValue(object, {QStringLiteral("width")}).toDouble());
    size.setHeight(GetParamValue(object, {QStringLiteral("height")}).toDouble());
    return size;
}

QVector<QPointF> PainterText::ReadPoints(const QString& painter)
{
    QVector<QPointF> points;
    QJsonObject object;
    parse(painter, &object);
    for (int i = 0;; ++i) {
        const QString index = QString::number(i);
        const QString x = GetParamValue(object, {QStringLiteral("points"), index, QStringLiteral("x")});
        const QString y = GetParamValue(object, {QStringLiteral("points"), index, QStringLiteral("y")});
        if (x.isEmpty() || y.isEmpty())
            break;
        points << QPointF(x.toDouble(), y.toDouble());
    }
    if (points.isEmpty())
        points << QPointF(-25, -50) << QPointF(25, -50) << QPointF(50, 0) << QPointF(25, 50) << QPointF(-25, 50)
               << QPointF(-50, 0) << QPointF(-25, -50);
    return points;
}

QString PainterText::SizeText(double width, double height)
{
    return QString::asprintf("{\"width\":\"%f\", \"height\":\"%f\"}", width, height);
}

QString PainterText::PointsText(const QVector<QPointF>& points)
{
    QStringList parts;
    for (const QPointF& p : points)
        parts << QString::asprintf("{\"x\":\"%f\", \"y\":\"%f\"}", p.x(), p.y());
    return QString::asprintf("{\"points\":[%s]}", parts.join(QLatin1Char(',')).toLocal8Bit().data());
}

} // namespace Plugin
