#pragma once

#include "editor/ModelTool.h"

#include <QCursor>

class QGraphicsLineItem;

namespace Plugin {

// Connects a var and a step by dragging from one to the other: the arrow points
// from where the drag began to where it ended, and its dialog says which
// parameter it serves. Var to var and step to step are refused without a word.
class ConnectTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    // Not in a read-only model.
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
    // Drops a line being drawn.
    void Deactivate() override;
    // Left button: starts a line at the pointer.
    void OnMousePress(QGraphicsSceneMouseEvent* event) override;
    // Runs the line to the pointer.
    void OnMouseDrag(QGraphicsSceneMouseEvent* event) override;
    // Takes the line down and, over a var and a step, offers the new arrow's dialog.
    void OnMouseRelease(QGraphicsSceneMouseEvent* event) override;

private:
    // The one place the line is taken down.
    void Reset();
    // The new arrow between the objects under the line's ends, through its
    // dialog; nothing when the ends are no var and step.
    void Connect(const QPointF& from, const QPointF& to);

    QGraphicsLineItem* m_line = nullptr; // in the scene while a line is drawn; see RubberBand
    QCursor m_cursor;
};

} // namespace Plugin
