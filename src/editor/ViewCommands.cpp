// Fixed zooms, 1:1 and full extent. The scene keeps a record of the scale beside
// the view's transform; every zoom sets both.
#include "editor/FullCommand.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/ZoomFixedZoomInCommand.h"
#include "editor/ZoomFixedZoomOutCommand.h"
#include "editor/ZoomToNativeResolutionCommand.h"

namespace Plugin {

void FullCommand::OnClick()
{
    ModelView* view = m_controler->GetView();
    const QSize size = view->size();
    const QRectF all = view->sceneRect();
    view->fitInView(all, Qt::KeepAspectRatio);
    const QRectF shown(view->mapToScene(QPoint(0, 0)), view->mapToScene(QPoint(size.width(), size.height())));
    // The record is the width ratio, even where the fit was made by the height.
    if (shown.width() != 0 && all.width() != 0)
        m_controler->GetScene()->SetScale(1.0 / (shown.width() / all.width()));
}

void ZoomToNativeResolutionCommand::OnCreate() { m_nativeScale = m_controler->GetScene()->GetScale(); }
void ZoomToNativeResolutionCommand::OnClick() { m_controler->GetView()->ApplyScale(m_nativeScale); }

void ZoomFixedZoomInCommand::OnClick()
{
    m_controler->GetView()->ApplyScale(m_controler->GetScene()->GetScale() * 1.5);
}

void ZoomFixedZoomOutCommand::OnClick()
{
    const double scale = m_controler->GetScene()->GetScale() * 0.5;
    if (scale < 0.001)
        return;
    m_controler->GetView()->ApplyScale(scale);
}

} // namespace Plugin
