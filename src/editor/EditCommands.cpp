// The edit commands of a model window; copy and paste are in ClipboardCommands.cpp.
#include "dialogs/VarAddDlg.h"
#include "editor/CopyCommand.h"
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

#include <QCoreApplication>
#include <QGraphicsItem>
#include <QUndoStack>

namespace Plugin {

bool DeleteCommand::IsEnable() { return !m_controler->IsReadOnly(); }

void DeleteCommand::OnClick()
{
    // Asked again after each removal: a process or var takes its arrows along.
    QList<QGraphicsItem*> selected = m_controler->GetScene()->selectedItems();
    const int count = selected.size();
    m_controler->BeginEdit(count == 1 ? QCoreApplication::translate("ModelControler", "Delete 1 object")
                                      : QCoreApplication::translate("ModelControler", "Delete %1 objects").arg(count));
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
    m_controler->EndEdit();
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
    m_controler->BeginEdit(QCoreApplication::translate("ModelControler", "Add Variable"));
    MB_ASSERT(m_controler->AddObject(var), delete var);
    m_controler->EndEdit();
}

bool CutCommand::IsEnable()
{
    return !m_controler->IsReadOnly() && !m_controler->GetScene()->selectedItems().isEmpty();
}

void CutCommand::OnClick()
{
    if (!IsEnable())
        return;
    CopyCommand copy;
    DeleteCommand remove;
    for (ModelCommand* command : {static_cast<ModelCommand*>(&copy), static_cast<ModelCommand*>(&remove)})
        command->SetControler(m_controler);
    m_controler->BeginEdit(QCoreApplication::translate("ModelControler", "Cut"));
    copy.OnClick();
    remove.OnClick();
    m_controler->EndEdit();
}

bool UndoCommand::IsEnable() { return m_controler->CanWalkHistory() && m_controler->GetHistory()->canUndo(); }

void UndoCommand::OnClick()
{
    if (!IsEnable())
        return;
    m_controler->GetHistory()->undo();
    m_controler->SetModified(!m_controler->GetHistory()->isClean());
}

bool RedoCommand::IsEnable() { return m_controler->CanWalkHistory() && m_controler->GetHistory()->canRedo(); }

void RedoCommand::OnClick()
{
    if (!IsEnable())
        return;
    m_controler->GetHistory()->redo();
    m_controler->SetModified(!m_controler->GetHistory()->isClean());
}


} // namespace Plugin
