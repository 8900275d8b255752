#pragma once

#include <QPen>

class QGraphicsItem;
class QGraphicsRectItem;
class QGraphicsScene;
class QPointF;
class QRectF;

namespace Plugin {

// The dotted rectangles the tools show while the mouse is dragged. A band is a
// plain scene item, not one of the model's: the scene owns it while it is up,
// and the tool that raised it takes it down.
class RubberBand
{
public:
    // Gray, dotted, width given in scene units (1 / scale keeps it one pixel wide).
    static QPen Pen(double width);
    // A band of rect with that pen width, added to scene.
    static QGraphicsRectItem* Raise(QGraphicsScene* scene, const QRectF& rect, double penWidth);
    // The rectangle spanned by two corners, in whatever order they come.
    static QRectF Span(const QPointF& a, const QPointF& b);
    // Takes item off its scene and deletes it; item becomes null. Null does nothing.
    template <class Item>
    static void Drop(Item*& item)
    {
        Discard(item);
        item = nullptr;
    }

private:
    static void Discard(QGraphicsItem* item);
};

} // namespace Plugin
