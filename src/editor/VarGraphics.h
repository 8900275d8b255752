#pragma once

#include "editor/GraphicsItemBase.h"

#include <QGraphicsEllipseItem>

namespace Plugin {

class APCVar;

// A var (data node) on the canvas: an ellipse centred on the var's position.
class VarGraphics : public QGraphicsEllipseItem, public GraphicsItemBase
{
public:
    enum { Type = UserType + 2 };
    VarGraphics(APCVar* var, ModelControler* controler);
    int type() const override { return Type; }

    APCObject* GetObject() override { return m_object; }
    QPolygonF GetOutline() override;
    void ScaleBy(const QPointF& anchor, double sx, double sy) override;
    QBrush GetBrush() override { return brush(); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void WriteBack() override;
};

} // namespace Plugin
