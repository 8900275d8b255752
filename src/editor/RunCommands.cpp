// Run, pause, stop, validate and export: the engine put to use from a model window.
#include "HostCatalogGui/DataTypeWidget.h"
#include "HostShell/EnvironmentSetting.h"
#include "dialogs/RunCmdDlg.h"
#include "editor/ClusterExportCommand.h"
#include "editor/ModelControler.h"
#include "editor/PauseCommand.h"
#include "editor/RunCommand.h"
#include "editor/StopCommand.h"
#include "editor/ValidateCommand.h"
#include "engine/APCAlgo.h"
#include "engine/ClusterExport.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/FreeVars.h"
#include "model/SoftAssert.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace Plugin {

namespace {

enum { Idle = 0, Running = 1, Paused = 2 };

// Tells which object fails its check; true when one does.
// The texts reportInvalid looks up, named here for the translation tools.
[[maybe_unused]] const char* const kInvalidTexts[] = {
    QT_TRANSLATE_NOOP("RunCommand", "Error"),      QT_TRANSLATE_NOOP("RunCommand", " is wrong!"),
    QT_TRANSLATE_NOOP("RunCommand", "OK"),         QT_TRANSLATE_NOOP("ValidateCommand", "Error"),
    QT_TRANSLATE_NOOP("ValidateCommand", " is wrong!"), QT_TRANSLATE_NOOP("ValidateCommand", "OK"),
};

bool reportInvalid(ModelControler* window, const char* context)
{
    APCObject* invalid = window->GetDocument()->FindInvalidObject();
    if (!invalid)
        return false;
    QMessageBox::information(window, QCoreApplication::translate(context, "Error"),
                             invalid->GetDescription() + QCoreApplication::translate(context, " is wrong!"),
                             QCoreApplication::translate(context, "OK"));
    return true;
}

// Asks the run dialog for a value of every free input and gives each clone the
// text of its widget; false when the user cancelled. The model is not touched:
// the values reach the run through the clones only.
bool AskFreeInputs(ModelControler* window, const FreeVars& free)
{
    RunCmdDlg dialog(window);
    QList<QPair<APCVar*, DataTypeWidget*>> pages;
    for (APCVar* clone : free.List()) {
        DataTypeWidget* widget = clone->CreateWidget();
        MB_ASSERT(widget, return false);
        widget->SetCaption(clone->GetDescription());
        pages.append({clone, widget});
        dialog.AddPage(widget, clone->GetDescription());
    }
    if (dialog.exec() != QDialog::Accepted)
        return false;
    for (const auto& page : pages)
        page.first->SetValue(page.second->GetValue());
    return true;
}

} // namespace

bool RunCommand::IsEnable() { return m_controler->GetSequenceControl()->GetState() != Running; }

void RunCommand::OnClick()
{
    ModelControler* window = m_controler;
    SequenceControl* control = window->GetSequenceControl();
    APCModel* model = window->GetDocument();
    if (reportInvalid(window, "RunCommand"))
        return;
    window->ShowLog();
    if (control->GetState() == Paused) {
        control->Start(); // continues; no new inputs
        return;
    }
    if (model->GetProcesses().isEmpty()) {
        QMessageBox::information(window, QCoreApplication::translate("RunCommand", "Error"),
                                 QCoreApplication::translate("RunCommand", "can not run an empty model!"),
                                 QCoreApplication::translate("RunCommand", "OK"));
        return;
    }
    const FreeVars free(*model);
    if (!free.IsEmpty() && !AskFreeInputs(window, free))
        return;
    ModelRun run(*control, *model);
    if (!run.Start(free.List(), window->GetModelName()))
        QMessageBox::information(window, QCoreApplication::translate("RunCommand", "Error"),
                                 control->GetBuildError(), QCoreApplication::translate("RunCommand", "OK"));
}

bool PauseCommand::IsEnable() { return m_controler->GetSequenceControl()->GetState() == Running; }
void PauseCommand::OnClick() { m_controler->GetSequenceControl()->Pause(); }

bool StopCommand::IsEnable() { return m_controler->GetSequenceControl()->GetState() != Idle; }

void StopCommand::OnClick()
{
    const auto answer = QMessageBox::question(m_controler, QCoreApplication::translate("StopCommand", "stop"),
                                              QCoreApplication::translate("StopCommand", "Whether or not to stop?"),
                                              QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes)
        m_controler->GetSequenceControl()->Stop();
}

void ValidateCommand::OnClick()
{
    if (reportInvalid(m_controler, "ValidateCommand"))
        return;
    QMessageBox::information(m_controler, QCoreApplication::translate("ValidateCommand", "succeed"),
                             QCoreApplication::translate("ValidateCommand", "Validate Succeed"),
                             QCoreApplication::translate("ValidateCommand", "OK"));
    // A model that passes its own checks may still hold options GDAL refuses: say so
    // now rather than at the step, hours into a batch.
    QStringList refused;
    for (APCProcess* process : m_controler->GetDocument()->GetProcesses())
        if (auto* algo = dynamic_cast<APCAlgo*>(process)) {
            const QStringList problem = algo->ParameterProblem();
            if (problem.size() == 2)
                refused << QCoreApplication::translate("ValidateCommand", "The parameter \"%1\" of \"%2\" is refused: %3")
                               .arg(problem[0], process->GetDescription(), problem[1]);
        }
    if (!refused.isEmpty())
        QMessageBox::warning(m_controler, QCoreApplication::translate("ValidateCommand", "Warning"),
                             refused.join(QLatin1Char('\n')), QCoreApplication::translate("ValidateCommand", "OK"));
}

void ClusterExportCommand::OnClick()
{
    ModelControler* window = m_controler;
    APCModel* model = window->GetDocument();
    const auto tell = [window](const char* title, const char* text, const QString& more = QString()) {
        QMessageBox::information(window, QCoreApplication::translate("ClusterExportCommand", title),
                                 QCoreApplication::translate("ClusterExportCommand", text) + more,
                                 QCoreApplication::translate("ClusterExportCommand", "OK"));
    };
    // The export walks the model's vars as a run does: not under a run.
    if (window->GetSequenceControl()->GetState() != Idle)
        return tell(QT_TRANSLATE_NOOP("ClusterExportCommand", "Error"), QT_TRANSLATE_NOOP("ClusterExportCommand", "The model is running: export it when the run has ended."));
    if (reportInvalid(window, "RunCommand"))
        return;
    if (model->GetProcesses().isEmpty())
        return tell(QT_TRANSLATE_NOOP("ClusterExportCommand", "Error"), QT_TRANSLATE_NOOP("ClusterExportCommand", "can not run an empty model!"));
    // The jobs run the file, not the window.
    if (window->IsModified() || !QFileInfo::exists(window->GetFilePath()))
        return tell(QT_TRANSLATE_NOOP("ClusterExportCommand", "Error"), QT_TRANSLATE_NOOP("ClusterExportCommand", "Save the model first: the cluster runs the saved file."));
    const FreeVars free(*model);
    if (!free.IsEmpty() && !AskFreeInputs(window, free))
        return;
    const QString dir = QFileDialog::getExistingDirectory(
        window, QCoreApplication::translate("ClusterExportCommand", "Export for a cluster"), QString());
    if (dir.isEmpty())
        return;
    QList<QPair<QString, QString>> settings;
    for (APCVar* clone : free.List())
        settings.append({clone->GetName(), clone->GetValue()});
    const QString mbrun = QFileInfo(HostShell::EnvironmentSetting::Instance()->GetAppBinDir() + QStringLiteral("/mbrun")).absoluteFilePath();
    ClusterExport workflow(window->GetFilePath(), settings, mbrun);
    QString error;
    if (!workflow.Plan(*model, free.List(), &error) || !workflow.Write(dir, &error))
        return tell(QT_TRANSLATE_NOOP("ClusterExportCommand", "Error"), QT_TRANSLATE_NOOP("ClusterExportCommand", "The workflow cannot be written: "), error);
    tell(QT_TRANSLATE_NOOP("ClusterExportCommand", "Export for a cluster"),
         QT_TRANSLATE_NOOP("ClusterExportCommand", "The workflow is written. Run it on this machine with:\n\n"),
         ClusterExport::LocalCommand(dir));
}

} // namespace Plugin
