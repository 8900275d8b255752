#include "dialogs/APCAlgoDlg.h"

#include "HostCatalog/Metadata.h"
#include "HostCatalogGui/AlgoInfo.h"
#include "engine/APCAlgo.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace Plugin {

APCAlgoDlg::APCAlgoDlg(APCProcess* process, QWidget* parent)
    : APCObjectDialog(process, parent),
      m_info(Metadata::Instance(QString())->GetAlgoInfo(process->GetProcessName(), parent))
{
    auto* algo = dynamic_cast<APCAlgo*>(process);
    if (m_info && algo)
        m_info->SetAlgoParams(algo->DialogText());
}

APCAlgoDlg::~APCAlgoDlg() = default;

int APCAlgoDlg::exec()
{
    if (!m_info) {
        QMessageBox::information(parentWidget(), QCoreApplication::translate("APCAlgoDlg", "Error"),
                                 QCoreApplication::translate("APCAlgoDlg", "The algorithm %1 is not installed.")
                                     .arg(static_cast<APCProcess*>(m_object)->GetProcessName()),
                                 QCoreApplication::translate("APCAlgoDlg", "OK"));
        return Rejected;
    }
    QDialog* form = m_info->GetAlgoDialog();
    return form ? form->exec() : int(Rejected);
}

void APCAlgoDlg::Apply()
{
    // Bad text from the form changes nothing, without a word.
    if (auto* algo = dynamic_cast<APCAlgo*>(m_object); algo && m_info)
        algo->ApplyDialogResult(m_info->GetAlgoParams());
}

} // namespace Plugin
