#include "editor/ScaleTool.h"

#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/RubberBand.h"

#include <QCoreApplication>
#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>

namespace Plugin {

namespace {

// The handle's place on r (grab) and the point opposite it (anchor).
void handlePoints(const QRectF& r, int handle, QPointF& grab, QPointF& anchor)
{
    const double midX = r.left() + r.width() / 2, midY = r.top() + r.height() / 2;
    switch (handle) {
    case ScaleTool::TopLeft: grab = r.topLeft(); anchor = r.bottomRight(); break;
    case ScaleTool::TopMiddle: grab = {midX, r.top()}; anchor = {midX, r.bottom()}; break;
    case ScaleTool::TopRight: grab = r.topRight(); anchor = r.bottomLeft(); break;
    case ScaleTool::RightMiddle: grab = {r.right(), midY}; anchor = {r.left(), midY}; break;
    case ScaleTool::BottomRight: grab = r.bottomRight(); anchor = r.topLeft(); break;
    case ScaleTool::BottomMiddle: grab = {midX, r.bottom()}; anchor = {midX, r.top()}; break;
    case ScaleTool::BottomLeft: grab = r.bottomLeft(); anchor = r.topRight(); break;
    case ScaleTool::LeftMiddle: grab = {r.left(), midY}; anchor = {r.right(), midY}; break;
    default: break;
    }
}

Qt::CursorShape cursorOf(int handle)
{
    switch (handle) {
    case ScaleTool::TopLeft:
    case ScaleTool::BottomRight: return Qt::SizeFDiagCursor;
    case ScaleTool::TopRight:
    case ScaleTool::BottomLeft: return Qt::SizeBDiagCursor;
    case ScaleTool::TopMiddle:
    case ScaleTool::BottomMiddle: return Qt::SizeVerCursor;
    default: return Qt::SizeHorCursor;
    }
}

} // namespace

int ScaleTool::HandleAt(QGraphicsItem* item, const QPointF& scenePos)
{
    if (!item)
        return NoHandle;
    const QRectF r = item->boundingRect();
    const QPointF p = item->mapFromScene(scenePos);
    for (int handle = TopLeft; handle <= LeftMiddle; ++handle) {
        QPointF grab, anchor;
        handlePoints(r, handle, grab, anchor);
        if (QRectF(grab.x() - 4, grab.y() - 4, 8, 8).contains(p))
            return handle;
    }
    return NoHandle;
}

QGraphicsItem* ScaleTool::LiveItem() const
{
    return m_item && m_controler && m_item->scene() == m_controler->GetScene() ? m_item : nullptr;
}

void ScaleTool::FindHandle(const QPointF& scenePos)
{
    if (!m_controler)
        return;
    const QList<QGraphicsItem*> selected = m_controler->GetScene()->selectedItems();
    if (selected.size() != 1) {
        m_item = nullptr;
        return;
    }
    m_item = selected.first();
    m_handle = HandleAt(m_item, scenePos);
    if (m_handle != NoHandle)
        m_controler->GetView()->setCursor(cursorOf(m_handle));
}

void ScaleTool::Press(QGraphicsSceneMouseEvent*)
{
    QGraphicsItem* item = LiveItem();
    if (m_band || !item)
        return;
    item->setSelected(true);
    item->setFlag(QGraphicsItem::ItemIsMovable, false); // Qt must not drag it as well
    if (m_handle != NoHandle) {
        QPointF grab, anchor;
        handlePoints(item->boundingRect(), m_handle, grab, anchor);
        m_grab = item->mapToScene(grab);
        m_anchor = item->mapToScene(anchor);
    }
    ModelScene* scene = m_controler->GetScene();
    m_band = RubberBand::Raise(scene, RubberBand::Span(m_grab, m_anchor), 1.0 / scene->GetScale());
}

void ScaleTool::Drag(QGraphicsSceneMouseEvent* event)
{
    QGraphicsItem* item = LiveItem();
    if (!m_band || !item || m_handle == NoHandle)
        return;
    item->setSelected(true); // a press beside the item cleared the selection
    const QRectF r = item->boundingRect();
    const QPointF topLeft = item->mapToScene(r.topLeft());
    const QPointF bottomRight = item->mapToScene(r.bottomRight());
    const QPointF m = event->scenePos();
    // A side handle moves one side only; a corner spans from the anchor.
    QPointF first = m_anchor, second = m;
    switch (m_handle) {
    case TopMiddle: first = bottomRight; second = {topLeft.x(), m.y()}; break;
    case RightMiddle: first = topLeft; second = {m.x(), bottomRight.y()}; break;
    case BottomMiddle: first = topLeft; second = {bottomRight.x(), m.y()}; break;
    case LeftMiddle: first = bottomRight; second = {m.x(), topLeft.y()}; break;
    default: break;
    }
    m_band->setRect(RubberBand::Span(first, second));
}

void ScaleTool::Release(QGraphicsSceneMouseEvent* event)
{
    if (!m_band)
        return;
    QGraphicsItem* item = LiveItem();
    auto* base = dynamic_cast<GraphicsItemBase*>(item);
    if (base && m_handle != NoHandle) {
        const QPointF m = event->scenePos();
        // A release level with the anchor keeps that side's size.
        double sx = 1.0, sy = 1.0;
        if (m_grab.x() != m_anchor.x() && m.x() != m_anchor.x())
            sx = (m.x() - m_anchor.x()) / (m_grab.x() - m_anchor.x());
        if (m_grab.y() != m_anchor.y() && m.y() != m_anchor.y())
            sy = (m.y() - m_anchor.y()) / (m_grab.y() - m_anchor.y());
        // The new size reaches the model through the move ScaleBy makes, which
        // records the centre the item had before it.
        base->ScaleBy(m_anchor, sx, sy);
        m_controler->NameEdit(QCoreApplication::translate("ModelControler", "Resize"));
    }
    Reset();
    FindHandle(event->scenePos());
}

void ScaleTool::Reset()
{
    if (!m_band)
        return;
    if (QGraphicsItem* item = LiveItem())
        item->setFlag(QGraphicsItem::ItemIsMovable, m_controler->GetScene()->IsEditable());
    RubberBand::Drop(m_band);
}

} // namespace Plugin
