#pragma once

#include <QBrush>
#include <QPolygonF>

class QPainter;
class QPointF;
class QRectF;

namespace Plugin {

class APCObject;
class ModelControler;

// What every canvas item adds to its Qt item: the object it shows, the window,
// and the execution state and progress of its step.
class GraphicsItemBase
{
public:
    GraphicsItemBase(APCObject* object, ModelControler* controler) : m_controler(controler), m_object(object) {}
    virtual ~GraphicsItemBase() = default;

    virtual void SetState(int state) { m_state = state; }
    // Percent of the running step, cut to an integer.
    virtual void SetProgress(double value) { m_progress = int(value); }
    virtual APCObject* GetObject() = 0;
    // The outline in item coordinates; arrows end on it.
    virtual QPolygonF GetOutline() = 0;
    // Resizes about anchor, given in scene coordinates.
    virtual void ScaleBy(const QPointF& anchor, double sx, double sy) = 0;
    virtual void RefreshEnds() {}
    // The fill for the clipboard picture.
    virtual QBrush GetBrush() { return QBrush(); }

    int GetState() const { return m_state; }
    int GetProgress() const { return m_progress; }

protected:
    ModelControler* m_controler; // not owned
    int m_state = 0;
    int m_progress = 0;
    APCObject* m_object; // not owned
};

} // namespace Plugin
