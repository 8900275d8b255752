// The tools' activation. What each does with the mouse comes with the tools'
// own work; until then Qt's handling of the items serves.
#include "editor/ConnectTool.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/PanTool.h"
#include "editor/SelectTool.h"
#include "editor/ZoomInTool.h"
#include "editor/ZoomOutTool.h"

#include <QPixmap>

namespace Plugin {

namespace {

void activate(ModelControler* window, bool interactive, const char* pixmap, int hotX, int hotY)
{
    window->GetScene()->SetItemsInteractive(interactive);
    window->GetView()->setCursor(QCursor(QPixmap(QLatin1String(pixmap)), hotX, hotY));
}

} // namespace

void SelectTool::OnClick() { activate(m_controler, true, ":/res/Model_SelectTool.png", 3, 0); }
void ConnectTool::OnClick() { activate(m_controler, false, ":/res/Model_ConnectTool.png", -1, -1); }
bool ConnectTool::IsEnable() { return !m_controler->IsReadOnly(); }
void PanTool::OnClick() { activate(m_controler, false, ":/res/Model_PanTool.png", -1, -1); }
void ZoomInTool::OnClick() { activate(m_controler, false, ":/res/Model_ZoomInTool.png", -1, -1); }
void ZoomOutTool::OnClick() { activate(m_controler, false, ":/res/Model_ZoomOutTool.png", -1, -1); }

} // namespace Plugin
