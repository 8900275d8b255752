#pragma once

#include <QPointF>

class QGraphicsRectItem;
class QGraphicsSceneMouseEvent;

namespace Plugin {

class ModelControler;

// The select tool's rubber band: a press over nothing raises it, the release
// selects every item it touches.
class FrameTool
{
public:
    virtual ~FrameTool() = default;

    // The window whose scene the band goes on.
    void SetControler(ModelControler* controler) { m_controler = controler; }
    // Raises an empty band at the pointer, unless one is up.
    void Press(QGraphicsSceneMouseEvent* event);
    // Spans the band from the press to the pointer.
    void Drag(QGraphicsSceneMouseEvent* event);
    // Selects what the band touches and takes it down.
    void Release(QGraphicsSceneMouseEvent* event);
    // Takes the band down without selecting; the one place the state is cleared.
    void Reset();
    // True while the band shows.
    bool IsUp() const { return m_band != nullptr; }

private:
    ModelControler* m_controler = nullptr; // not owned
    QGraphicsRectItem* m_band = nullptr;   // in the scene while up; see RubberBand
    QPointF m_start;
};

} // namespace Plugin
