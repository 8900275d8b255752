// The select tool's mouse handling; its activation and double click are with the
// other tools' activations.
#include "editor/SelectTool.h"

#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"

#include <QGraphicsSceneMouseEvent>
#include <QTransform>

namespace Plugin {

void SelectTool::OnCreate()
{
    m_frame.SetControler(m_controler);
    m_scale.SetControler(m_controler);
}

void SelectTool::Deactivate() { Reset(); }

void SelectTool::Reset()
{
    m_frame.Reset();
    m_scale.Reset();
}

void SelectTool::OnMouseHover(QGraphicsSceneMouseEvent* event)
{
    m_controler->GetView()->setCursor(m_cursor);
    ModelScene* scene = m_controler->GetScene();
    const QPointF at = event->scenePos();
    const QList<QGraphicsItem*> selected = scene->selectedItems();
    if (selected.size() == 1 && ScaleTool::HandleAt(selected.first(), at) != ScaleTool::NoHandle)
        m_hit = HitHandle;
    else
        m_hit = scene->itemAt(at, QTransform()) ? HitItem : HitNothing;
    if (m_hit == HitHandle && !m_controler->IsReadOnly())
        m_scale.FindHandle(at);
}

void SelectTool::OnMousePress(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // A band or resize still up lost its release: it starts over.
    Reset();
    if (m_hit == HitNothing)
        m_frame.Press(event);
    else if (m_hit == HitHandle && !m_controler->IsReadOnly())
        m_scale.Press(event);
    // On an item Qt moves the selection by itself.
}

void SelectTool::OnMouseDrag(QGraphicsSceneMouseEvent* event)
{
    if (m_hit == HitNothing)
        m_frame.Drag(event);
    else if (m_hit == HitHandle && !m_controler->IsReadOnly())
        m_scale.Drag(event);
}

void SelectTool::OnMouseRelease(QGraphicsSceneMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (m_hit == HitNothing)
        m_frame.Release(event);
    else if (m_hit == HitHandle)
        m_scale.Release(event);
}

} // namespace Plugin
