#pragma once

#include "editor/GraphicsItemBase.h"

#include <QGraphicsRectItem>

namespace Plugin {

class APCProcess;

// A step drawn as a rectangle (algorithms and nested models): the size comes
// from the object's painter text, the position is the rectangle's centre.
class RectGraphics : public QGraphicsRectItem, public GraphicsItemBase
{
public:
    RectGraphics(APCProcess* process, ModelControler* controler);

    void SetState(int state) override { SetStateWithBrush(this, state); }
    void SetProgress(double value) override { SetProgressWithRedraw(this, value); }
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
