#pragma once

#include "editor/CanvasItem.h"

#include <QGraphicsPolygonItem>

namespace Plugin {

class APCIterator;

// A file iterator on the canvas: a polygon, a hexagon unless the file says
// otherwise.
class IteratorGraphics : public CanvasItem<QGraphicsPolygonItem>
{
public:
    enum { Type = UserType + 4 };
    IteratorGraphics(APCIterator* iterator, ModelControler* controler);
    // Defined in the library, so that every caller sees one type for the item.
    APCObject* GetObject() override;
    int type() const override { return Type; }

    void SetState(int state) override { SetStateWithBrush(this, state); }
    void SetProgress(double value) override { SetProgressWithRedraw(this, value); }
    QPolygonF GetOutline() override { return polygon(); }
    void ScaleBy(const QPointF& anchor, double sx, double sy) override;
    QBrush GetBrush() override { return brush(); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void WriteBack() override;
};

} // namespace Plugin
