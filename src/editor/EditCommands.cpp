// The edit commands of a model window. Copy, paste, delete and adding a var
// get their work with the clipboard and the var dialogs; their enable rules
// stand already.
#include "dialogs/VarAddDlg.h"
#include "editor/AutoLayoutCommand.h"
#include "editor/CopyCommand.h"
#include "editor/CutCommand.h"
#include "editor/DeleteCommand.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/PasteCommand.h"
#include "editor/RedoCommand.h"
#include "editor/UndoCommand.h"
#include "editor/VarAddCommand.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/SoftAssert.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

namespace Plugin {

bool CopyCommand::IsEnable() { return !m_controler->GetScene()->selectedItems().isEmpty(); }
void CopyCommand::OnClick() {}

bool PasteCommand::IsEnable()
{
    if (m_controler->IsReadOnly())
        return false;
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime || !mime->hasText())
        return true; // enabled, and a paste then does nothing
    const QStringList parts = mime->text().split(QStringLiteral("$$"), Qt::KeepEmptyParts, Qt::CaseSensitive);
    return parts.size() >= 2 && parts.first() == QLatin1String("ModelBuilder");
}
void PasteCommand::OnClick() {}

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
void AutoLayoutCommand::OnClick() {}

} // namespace Plugin
