// The tools that move the view rather than the model: pan and the band zooms.
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/PanTool.h"
#include "editor/RubberBand.h"
#include "editor/ZoomInTool.h"
#include "editor/ZoomOutTool.h"

#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <cmath>

namespace Plugin {

namespace {

// A release this close to the press is a click, which zooms nothing.
bool isClick(const QPointF& start, const QPointF& end)
{
    return std::fabs(end.x() - start.x()) <= 1e-12 && std::fabs(end.y() - start.y()) <= 1e-12;
}

} // namespace

void PanTool::Deactivate() { m_controler->GetView()->setDragMode(QGraphicsView::NoDrag); }

void PanTool::OnMousePress(QGraphicsSceneMouseEvent*)
{
    m_controler->GetView()->setDragMode(QGraphicsView::ScrollHandDrag);
}

void PanTool::OnMouseRelease(QGraphicsSceneMouseEvent*) { m_controler->GetView()->setDragMode(QGraphicsView::NoDrag); }

void ZoomInTool::Deactivate() { Reset(); }

void ZoomInTool::Reset() { RubberBand::Drop(m_band); }

void ZoomInTool::OnMousePress(QGraphicsSceneMouseEvent* event)
{
    ModelScene* scene = m_controler->GetScene();
    m_start = event->scenePos();
    // A band left up by a plain click, or by a press whose release never came,
    // serves again.
    if (!m_band)
        m_band = RubberBand::Raise(scene, QRectF(m_start, QSizeF(0, 0)), std::min(1.0 / scene->GetScale(), 1.0));
}

void ZoomInTool::OnMouseDrag(QGraphicsSceneMouseEvent* event)
{
    if (m_band)
        m_band->setRect(RubberBand::Span(m_start, event->scenePos()));
}

void ZoomInTool::OnMouseRelease(QGraphicsSceneMouseEvent* event)
{
    const QPointF end = event->scenePos();
    // A plain click zooms nothing and leaves the empty band for the next press.
    if (isClick(m_start, end) || !m_band)
        return;
    ModelView* view = m_controler->GetView();
    ModelScene* scene = m_controler->GetScene();
    const QRectF box = RubberBand::Span(m_start, end);
    const double scale = scene->GetScale();
    const double sceneWidth = view->sceneRect().width();
    // A box without area has no aspect to fit.
    if (scale < 5.0 && box.width() > 0 && box.height() > 0 && sceneWidth > 0) {
        const double next = std::min(scale / (box.width() / sceneWidth), 5.0);
        view->fitInView(box, Qt::KeepAspectRatioByExpanding);
        // The record is this figure, not the factor the fit reached.
        scene->SetScale(next);
    }
    Reset();
}

void ZoomOutTool::Deactivate() { Reset(); }

void ZoomOutTool::Reset() { RubberBand::Drop(m_band); }

void ZoomOutTool::OnMousePress(QGraphicsSceneMouseEvent* event)
{
    ModelScene* scene = m_controler->GetScene();
    m_start = event->scenePos();
    // A band left up by a plain click, or by a press whose release never came,
    // serves again.
    if (!m_band)
        m_band = RubberBand::Raise(scene, QRectF(m_start, QSizeF(0, 0)), 1.0 / scene->GetScale());
}

void ZoomOutTool::OnMouseDrag(QGraphicsSceneMouseEvent* event)
{
    if (m_band)
        m_band->setRect(RubberBand::Span(m_start, event->scenePos()));
}

void ZoomOutTool::OnMouseRelease(QGraphicsSceneMouseEvent* event)
{
    const QPointF end = event->scenePos();
    // A plain click zooms nothing and leaves the empty band for the next press.
    if (isClick(m_start, end) || !m_band)
        return;
    ModelView* view = m_controler->GetView();
    const QRectF box = RubberBand::Span(m_start, end);
    const double scale = m_controler->GetScene()->GetScale();
    const double sceneWidth = view->sceneRect().width();
    if (scale > 0.2 && sceneWidth > 0)
        view->ApplyScale(std::max(scale * box.width() / sceneWidth, 0.2));
    Reset();
}

} // namespace Plugin
