#pragma once

#include "editor/CanvasItem.h"

#include <QGraphicsEllipseItem>

namespace Plugin {

class APCVar;

// A var (data node) on the canvas: an ellipse centred on the var's position.
class VarGraphics : public CanvasItem<QGraphicsEllipseItem>
{
public:
    enum { Type = UserType + 2 };
    VarGraphics(APCVar* var, ModelControler* controler);
    // Defined in the library, so that every caller sees one type for the item.
    APCObject* GetObject() override;
    int type() const override { return Type; }

    QPolygonF GetOutline() override;
    void ScaleBy(const QPointF& anchor, double sx, double sy) override;
    QBrush GetBrush() override { return brush(); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void WriteBack() override;
};

} // namespace Plugin
