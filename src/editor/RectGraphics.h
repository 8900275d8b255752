#pragma once

#include "editor/CanvasItem.h"

#include <QGraphicsRectItem>

namespace Plugin {

class APCProcess;

// A step drawn as a rectangle (algorithms and nested models): the size comes
// from the object's painter text, the position is the rectangle's centre.
class RectGraphics : public CanvasItem<QGraphicsRectItem>
{
public:
    RectGraphics(APCProcess* process, ModelControler* controler);
    // Defined in the library, so that every caller sees one type for the item.
    APCObject* GetObject() override;

    void SetState(int state) override { SetStateWithBrush(this, state); }
    void SetProgress(double value) override { SetProgressWithRedraw(this, value); }
    QPolygonF GetOutline() override;
    void ScaleBy(const QPointF& anchor, double sx, double sy) override;
    QBrush GetBrush() override { return brush(); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    void WriteBack() override;
};

} // namespace Plugin
