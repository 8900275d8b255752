#pragma once

#include "editor/FrameTool.h"
#include "editor/ModelTool.h"
#include "editor/ScaleTool.h"

#include <QCursor>

namespace Plugin {

// Selects, moves and resizes objects; a double click opens an object's dialog.
// What a press does is decided by the last move without a button: a band over
// nothing, a resize on a handle of the one selected item, a move on an item.
class SelectTool : public ModelTool
{
public:
    // What lies under the pointer.
    enum Hit { HitNothing = 0, HitHandle = 1, HitItem = 2 };

    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
    // Gives the band and the resizing their window.
    void OnCreate() override;
    // Drops a band or a resize under way.
    void Deactivate() override;
    // Left double click on an object: its dialog, none while a run goes on; what
    // was accepted is applied unless the model is read-only or a run is paused.
    void OnDoubleClick(QGraphicsSceneMouseEvent* event, APCObject* object, void* data) override;
    // Left button: a band over nothing, a resize on a handle; on an item Qt moves it.
    void OnMousePress(QGraphicsSceneMouseEvent* event) override;
    // Stretches the band or the resize; moved items are Qt's.
    void OnMouseDrag(QGraphicsSceneMouseEvent* event) override;
    // Selects by the band or resizes the item.
    void OnMouseRelease(QGraphicsSceneMouseEvent* event) override;
    // Shows the tool's cursor, or a handle's, and works out what a press would hit.
    void OnMouseHover(QGraphicsSceneMouseEvent* event) override;

    // What the last move without a button found under the pointer.
    int GetHit() const { return m_hit; }

private:
    // The one place a gesture under way is abandoned.
    void Reset();

    QCursor m_cursor;
    int m_hit = HitNothing;
    FrameTool m_frame;
    ScaleTool m_scale;
};

} // namespace Plugin
