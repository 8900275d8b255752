#pragma once

#include "editor/GraphicsItemBase.h"

#include <QGraphicsItem>
#include <QGraphicsSceneMouseEvent>

namespace Plugin {

// A Qt item class joined with GraphicsItemBase, with what every canvas item
// does alike: moves and scalings go back into the object (see OnItemChange),
// and double clicks go to the current tool.
template <class QtItem>
class CanvasItem : public QtItem, public GraphicsItemBase
{
public:
    CanvasItem(APCObject* object, ModelControler* controler) : GraphicsItemBase(object, controler) {}

protected:
    QVariant itemChange(QGraphicsItem::GraphicsItemChange change, const QVariant& value) override
    {
        OnItemChange(this, change);
        return value;
    }
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override
    {
        ForwardDoubleClick(this, event);
        QGraphicsItem::mouseDoubleClickEvent(event);
    }
};

} // namespace Plugin
