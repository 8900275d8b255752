// Run, pause, stop and validate: the engine put to use from a model window.
#include "editor/ModelControler.h"
#include "editor/PauseCommand.h"
#include "editor/RunCommand.h"
#include "editor/StopCommand.h"
#include "editor/ValidateCommand.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/FreeVars.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace Plugin {

namespace {

enum { Idle = 0, Running = 1, Paused = 2 };

// Tells which object fails its check; true when one does.
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
    if (!free.IsEmpty()) {
        // The dialog that asks for inputs comes with the var widgets; until then
        // such a model runs from mbrun, which takes them on its command line.
        QMessageBox::information(window, QCoreApplication::translate("RunCommand", "Error"),
                                 QCoreApplication::translate("RunCommand",
                                                             "This model has inputs; run it with mbrun --set NAME=VALUE for now."),
                                 QCoreApplication::translate("RunCommand", "OK"));
        return;
    }
    ModelRun(*control, *model).Start(free.List(), window->GetModelName());
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
}

} // namespace Plugin
