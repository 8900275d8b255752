#pragma once

#include "editor/CanvasItem.h"

#include <QGraphicsLineItem>

namespace Plugin {

class APCArrow;

// A link between a step and a var; it lies under the items, runs between their
// outlines, and is recomputed at every paint.
class ArrowGraphics : public CanvasItem<QGraphicsLineItem>
{
public:
    enum { Type = UserType + 3 };
    ArrowGraphics(APCArrow* arrow, ModelControler* controler);
    // Defined in the library, so that every caller sees one type for the item.
    APCObject* GetObject() override;
    int type() const override { return Type; }

    QPolygonF GetOutline() override { return QPolygonF(); }
    void ScaleBy(const QPointF&, double, double) override {}
    // Finds the items of both ends again; keeps the old ones if either is missing.
    void RefreshEnds() override;
    // Runs the line from the tail item's origin to the head item's.
    void UpdatePosition();
    // The arrow between two canvas items as it is drawn, in scene coordinates:
    // line from the head's outline (p1) to the tail's (p2), and the head's three
    // corners. False when the items overlap, and nothing is to be drawn.
    static bool Shape(QGraphicsItem* head, QGraphicsItem* tail, QLineF& line, QPolygonF& headShape);

    QGraphicsItem* GetHeadItem() const { return m_headItem; }
    QGraphicsItem* GetTailItem() const { return m_tailItem; }
    QPolygonF GetHeadShape() const { return m_headShape; }

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    // An arrow only follows its ends: nothing to write back.
    QVariant itemChange(GraphicsItemChange, const QVariant& value) override { return value; }

private:
    QGraphicsItem* m_headItem = nullptr; // not owned
    QGraphicsItem* m_tailItem = nullptr; // not owned
    QPolygonF m_headShape;               // the arrow head as last painted
};

} // namespace Plugin
