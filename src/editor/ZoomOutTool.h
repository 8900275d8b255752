#pragma once

#include "editor/ModelTool.h"

#include <QCursor>
#include <QPointF>

class QGraphicsRectItem;

namespace Plugin {

// Zooms out by a dragged box, with any button, down to a scale of 0.2: the
// narrower the box against the scene, the further out. A click without a move
// zooms nothing.
class ZoomOutTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
    // Drops a band under way.
    void Deactivate() override;
    // Raises a band at the pointer.
    void OnMousePress(QGraphicsSceneMouseEvent* event) override;
    // Spans the band from the press to the pointer.
    void OnMouseDrag(QGraphicsSceneMouseEvent* event) override;
    // Zooms by the band, within the limit, and takes the band down.
    void OnMouseRelease(QGraphicsSceneMouseEvent* event) override;

private:
    // The one place the band is taken down.
    void Reset();

    QPointF m_start;
    QGraphicsRectItem* m_band = nullptr; // in the scene while up; see RubberBand
    QCursor m_cursor;
};

} // namespace Plugin
