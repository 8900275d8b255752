// The edit commands of a model window; copy and paste are in ClipboardCommands.cpp.
#include "dialogs/VarAddDlg.h"
#include "editor/CutCommand.h"
#include "editor/DeleteCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/RedoCommand.h"
#include "editor/UndoCommand.h"
#include "editor/VarAddCommand.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/SoftAssert.h"

#include <QGraphicsItem>

namespace Plugin {

bool DeleteCommand::IsEnable() { return !m_controler->IsReadOnly(); }

void DeleteCommand::OnClick()
{
    // Asked again after each removal: a process or var takes its arrows along.
    QList<QGraphicsItem*> selected = m_controler->GetScene()->selectedItems();
    while (!selected.isEmpty()) {
        QGraphicsItem* first = selected.first();
        auto* base = dynamic_cast<GraphicsItemBase*>(first);
        if (APCObject* object = base ? base->GetObject() : nullptr)
            m_controler->RemoveObject(object);
        // An item the document would not let go of must not stop the loop.
        if (first->scene() && first->isSelected())
            first->setSelected(false);
        selected = m_controler->GetScene()->selectedItems();
    }
}

bool VarAddCommand::IsEnable() { return !m_controler->IsReadOnly(); }
void VarAddCommand::OnClick()
{
    VarAddDlg dialog(m_controler);
    if (dialog.exec() != QDialog::Accepted)
        return;
    APCVar* var = APCVarFactory::Instance()->Create(dialog.GetDataType());
    var->SetDescription(dialog.GetDataTypeLabel());
    var->SetPos(QPointF(50, 50)); // every new var lands here, over any var already there
    MB_ASSERT(m_controler->AddObject(var), delete var);
}

void CutCommand::OnClick() {}
void UndoCommand::OnClick() {}
void RedoCommand::OnClick() {}

} // namespace Plugin
