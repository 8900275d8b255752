// The tools' activation and the select tool's double click. Their mouse
// handling is in SelectTool.cpp, ConnectTool.cpp and ViewTools.cpp.
#include "dialogs/APCObjectDialog.h"
#include "editor/ConnectTool.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/PanTool.h"
#include "editor/SelectTool.h"
#include "editor/ZoomInTool.h"
#include "editor/ZoomOutTool.h"
#include "engine/SequenceControl.h"
#include "model/APCObject.h"

#include <QCoreApplication>
#include <QGraphicsSceneMouseEvent>
#include <QPixmap>

#include <memory>

namespace Plugin {

namespace {

// Sets the items up for the tool and shows its cursor, which the tool keeps.
QCursor activate(ModelControler* window, bool interactive, const char* pixmap, int hotX, int hotY)
{
    window->GetScene()->SetItemsInteractive(interactive);
    const QCursor cursor(QPixmap(QLatin1String(pixmap)), hotX, hotY);
    window->GetView()->setCursor(cursor);
    return cursor;
}

} // namespace

void SelectTool::OnDoubleClick(QGraphicsSceneMouseEvent* event, APCObject* object, void*)
{
    if (!event || event->button() != Qt::LeftButton || !object)
        return;
    // Steps of a run read the model from pool threads: no dialog while it runs,
    // and a paused run (whose last steps may still be working) is only looked at.
    const int state = m_controler->GetSequenceControl()->GetState();
    if (state == SequenceControl::Running)
        return;
    std::unique_ptr<APCObjectDialog> dialog(object->CreateDialog(m_controler));
    if (!dialog)
        return;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (accepted && !m_controler->IsReadOnly() && state == SequenceControl::Idle) {
        m_controler->BeginEdit(QCoreApplication::translate("ModelControler", "Change %1").arg(object->GetDescription()));
        dialog->Apply();
        m_controler->EndEdit();
    }
}

void SelectTool::OnClick() { m_cursor = activate(m_controler, true, ":/res/Model_SelectTool.png", 3, 0); }
void ConnectTool::OnClick() { m_cursor = activate(m_controler, false, ":/res/Model_ConnectTool.png", -1, -1); }
bool ConnectTool::IsEnable() { return !m_controler->IsReadOnly(); }
void PanTool::OnClick() { m_cursor = activate(m_controler, false, ":/res/Model_PanTool.png", -1, -1); }
void ZoomInTool::OnClick() { m_cursor = activate(m_controler, false, ":/res/Model_ZoomInTool.png", -1, -1); }
void ZoomOutTool::OnClick() { m_cursor = activate(m_controler, false, ":/res/Model_ZoomOutTool.png", -1, -1); }

} // namespace Plugin
