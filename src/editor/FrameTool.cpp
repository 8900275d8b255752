#include "editor/FrameTool.h"

#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/RubberBand.h"

#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>
#include <QPainterPath>

namespace Plugin {

void FrameTool::Press(QGraphicsSceneMouseEvent* event)
{
    if (m_band || !m_controler)
        return;
    ModelScene* scene = m_controler->GetScene();
    m_start = event->scenePos();
    m_band = RubberBand::Raise(scene, QRectF(m_start, QSizeF(0, 0)), 1.0 / scene->GetScale());
}

void FrameTool::Drag(QGraphicsSceneMouseEvent* event)
{
    if (m_band)
        m_band->setRect(RubberBand::Span(m_start, event->scenePos()));
}

void FrameTool::Release(QGraphicsSceneMouseEvent*)
{
    if (!m_band)
        return;
    QPainterPath path;
    path.addRect(m_band->rect());
    m_controler->GetScene()->setSelectionArea(path, Qt::IntersectsItemShape, QTransform());
    Reset();
}

void FrameTool::Reset() { RubberBand::Drop(m_band); }

} // namespace Plugin
