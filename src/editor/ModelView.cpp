#include "editor/ModelView.h"

#include "editor/ModelScene.h"

namespace Plugin {

ModelView::ModelView(ModelScene* scene, QWidget* parent) : QGraphicsView(scene, parent), m_scene(scene) {}

void ModelView::ApplyScale(double scale)
{
    if (m_scene)
        m_scene->SetScale(scale);
    const QTransform old = transform();
    resetTransform();
    translate(old.dx(), old.dy());
    this->scale(scale, scale);
}

void ModelView::enterEvent(QEvent* event)
{
    if (m_scene)
        m_scene->OnViewEnter(event);
}

void ModelView::leaveEvent(QEvent* event)
{
    if (m_scene)
        m_scene->OnViewLeave(event);
}

} // namespace Plugin
