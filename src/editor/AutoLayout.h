#pragma once

#include <QPair>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QVector>

namespace Plugin {

class ModelControler;

// Boxes to place and the links between them, tail to head, by index.
struct LayoutGraph
{
    QVector<QSizeF> sizes;
    QVector<QPair<int, int>> links;
};

// Places the boxes in layers from left to right, each link going from a layer to
// a later one where the links allow it, no two boxes touching. Gives the centres,
// the whole drawing's top-left corner at (0, 0); empty, with the reason in
// error, when the layout library fails.
QVector<QPointF> LayOutLeftToRight(const LayoutGraph& graph, QString* error);

// Lays the window's steps and vars out by their arrows, keeping the drawing's
// top-left corner where it was. The items move and the model takes their new
// places as after a drag; the arrows follow their ends. False, with the reason,
// when nothing could be placed; the model is then unchanged.
bool AutoLayoutModel(ModelControler* window, QString* error);

} // namespace Plugin
