#pragma once

#include "editor/ModelCommand.h"

#include <QCursor>

class QEvent;
class QGraphicsSceneMouseEvent;

namespace Plugin {

class APCObject;

// A command that, once chosen, receives the canvas's mouse events. The scene
// hands every event to the window's current tool before Qt handles it.
class ModelTool : public ModelCommand
{
public:
    virtual QCursor GetCursor() { return QCursor(); }
    // Kept for the interface's layout; nothing calls it.
    virtual void Activate() {}
    // Called by the window when another tool becomes current: a tool drops any
    // band or line it has up, so that a switch in mid-drag leaves nothing behind.
    virtual void Deactivate() {}
    // Kept for the interface's layout; nothing calls it.
    virtual bool CanDeactivate() { return true; }
    // A double click on an item; data is the item.
    virtual void OnDoubleClick(QGraphicsSceneMouseEvent* event, APCObject* object, void* data) {}
    // Kept for the interface's layout; nothing calls them.
    virtual void OnKeyDown() {}
    virtual void OnKeyUp() {}
    virtual void OnMousePress(QGraphicsSceneMouseEvent* event) {}
    virtual void OnMouseDrag(QGraphicsSceneMouseEvent* event) {}
    virtual void OnMouseRelease(QGraphicsSceneMouseEvent* event) {}
    virtual void OnMouseHover(QGraphicsSceneMouseEvent* event) {}
    virtual void OnEnter(QEvent* event) {}
    virtual void OnLeave(QEvent* event) {}
};

} // namespace Plugin
