// The file commands of a model window, and those kept for later wiring; the
// picture export is in ModelPicture.cpp.
#include "editor/ExportPyCommand.h"
#include "editor/ModelControler.h"
#include "editor/SaveAsCommand.h"
#include "editor/SaveCommand.h"
#include "model/APCModel.h"

#include <QCoreApplication>
#include <QFileDialog>

namespace Plugin {

bool SaveCommand::IsEnable() { return !m_controler->IsReadOnly() && m_controler->IsModified(); }

void SaveCommand::OnClick()
{
    m_controler->SaveModel();
    m_controler->SetModified(false);
}

void SaveAsCommand::OnClick()
{
    const QString name = QFileDialog::getSaveFileName(
        m_controler, QCoreApplication::translate("SaveAsCommand", "Save As"), QString(),
        QCoreApplication::translate("SaveAsCommand", "AlgoProcessControl File(*.apc);;All File(*.*)"));
    // A cancelled dialog gives an empty name, whose save fails quietly.
    m_controler->GetDocument()->SaveFile(name);
}

void ExportPyCommand::OnClick() {}

} // namespace Plugin
