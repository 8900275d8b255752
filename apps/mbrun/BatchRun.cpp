#include "BatchRun.h"

#include "ClosingLines.h"
#include "CommandLine.h"
#include "Console.h"
#include "FreeInputs.h"
#include "ModelFileCheck.h"
#include "PlanPrinter.h"
#include "Preflight.h"
#include "ResumeState.h"
#include "RunRecorder.h"
#include "StallWatch.h"
#include "StepFiles.h"
#include "StepGraph.h"
#include "StopSignals.h"
#include "StreamingLog.h"

#include "HostRunner/OutputPaths.h"

#include "engine/APCExecuteFactory.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/VarReference.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QSet>
#include <QTimer>

#include <unistd.h>

namespace Mbrun {

using Status = RunRecorder::Status;

BatchRun::BatchRun(const CommandLine& options) : m_options(options)
{
    if (!options.ReportPath().isEmpty()) {
        m_report = std::make_unique<ReportWriter>(options.ReportPath(), options.ModelPath());
        m_report->SetStarted(QDateTime::currentDateTimeUtc());
        m_report->SetResume(options.Resume());
    }
}

BatchRun::~BatchRun() = default;

bool BatchRun::WriteReport(const RunRecorder* recorder, ReportWriter::Outcome outcome, int code)
{
    if (!m_report)
        return true;
    QString error;
    if (m_report->Write(recorder, outcome, code, m_signal ? StopSignals::Name(m_signal) : QString(), &error))
        return true;
    Console::Err(QStringLiteral("mbrun: cannot write the report %1: %2\n").arg(m_options.ReportPath(), error));
    return false;
}

void BatchRun::Say(const QStringList& lines)
{
    for (const QString& line : lines) {
        Console::Err(line);
        if (m_report)
            m_report->AddMessage(line.trimmed());
    }
}

int BatchRun::Refuse(const QStringList& lines)
{
    Say(lines);
    WriteReport(nullptr, ReportWriter::Outcome::Refused, Refused);
    return Refused;
}

QString BatchRun::ModelName() const
{
    return QFileInfo(m_options.ModelPath()).baseName();
}

int BatchRun::Exec()
{
    const QString path = m_options.ModelPath();
    Plugin::APCModel model;
    if (!model.LoadFile(path))
        return Refuse({QStringLiteral("mbrun: cannot open the model file %1: %2\n").arg(path, ModelFileCheck::Explain(path))});

    FreeInputs inputs(model);
    if (m_options.GetAction() == CommandLine::Action::List) {
        Console::Out(inputs.Table());
        if (inputs.IsEmpty())
            Console::Err(QStringLiteral("mbrun: the model has no free inputs: run it with no --set\n"));
        return Success;
    }
    const QStringList problems = Preflight::Problems(model, path);
    if (!problems.isEmpty())
        return Refuse(problems);
    QStringList inputProblems = inputs.Apply(m_options.Settings());
    inputProblems += inputs.Missing();
    if (m_report)
        m_report->SetInputs(inputs.Values());
    if (!inputProblems.isEmpty())
        return Refuse(inputProblems);
    return Run(model, inputs);
}

QString BatchRun::PrepareUnstarted(Plugin::SequenceControl& control, Plugin::APCModel& model, const FreeInputs& inputs)
{
    Plugin::ModelRun::Prepare(control, model, inputs.List(), ModelName());
    if (!control.GetBuildError().isEmpty())
        return control.GetBuildError();
    // Steps that wait for each other would never start: the run would only stall.
    const QList<Plugin::SequenceNode*> cycle = StepGraph::Cycle(control.GetNodes());
    if (cycle.isEmpty())
        return QString();
    QStringList descriptions;
    for (Plugin::SequenceNode* node : cycle)
        descriptions << node->GetProcess()->GetDescription();
    // Steps of one algorithm often keep its name: then their ids tell them apart.
    const bool same = descriptions.removeDuplicates() > 0;
    QStringList names;
    for (Plugin::SequenceNode* node : cycle)
        names << QLatin1Char('"') + node->GetProcess()->GetDescription() + QLatin1Char('"') +
                     (same ? QStringLiteral(" (%1)").arg(node->GetProcess()->GetName()) : QString());
    names << names.first();
    return QStringLiteral("the steps %1 wait for each other in a cycle, so none of them can start")
        .arg(names.join(QStringLiteral(" -> ")));
}

int BatchRun::Plan(Plugin::APCModel& model, const FreeInputs& inputs)
{
    Plugin::SequenceControl control; // for its graph: it never starts
    std::unique_ptr<ResumeState> state;
    if (m_options.Resume())
        state = std::make_unique<ResumeState>(m_options.ModelPath(), ResumeState::Mode::Plan);
    const QString buildError = PrepareUnstarted(control, model, inputs);
    if (!buildError.isEmpty())
        return Refuse({QStringLiteral("mbrun: the model cannot run: %1\n").arg(buildError)});
    PlanPrinter plan(control, state.get());
    plan.Print(ModelName());
    Say(plan.Warnings());
    const QStringList conflicts = plan.Conflicts().Problems();
    if (!conflicts.isEmpty()) {
        Say(conflicts);
        return Refused;
    }
    return plan.Failed() ? StepFailed : Success;
}

namespace {

// Whether step reads a var it also writes: then it waits for itself.
bool readsWhatItWrites(Plugin::APCProcess* step)
{
    QSet<QString> read, written;
    for (const Plugin::APCParameter& p : step->GetParameters())
        if (Plugin::IsVarReference(p.value))
            (p.direction == 1 ? written : read).insert(Plugin::ReferencedVarId(p.value));
    return read.intersects(written);
}

} // namespace

QStringList BatchRun::FileConflictsOf(Plugin::APCModel& model, const FreeInputs& inputs)
{
    // One step has nothing to conflict with, and waits only when it reads what
    // it writes: the graph is built only then, to keep a one-step run quick.
    if (model.GetProcesses().size() < 2 &&
        (model.GetProcesses().isEmpty() || !readsWhatItWrites(model.GetProcesses().first())))
        return {};
    // Every round is planned, as a dry run would: the names of a round's files
    // are known only once its iterator hands them out.
    Plugin::SequenceControl control;
    const QString buildError = PrepareUnstarted(control, model, inputs);
    if (!buildError.isEmpty())
        return {QStringLiteral("mbrun: the model cannot run: %1\n").arg(buildError)};
    PlanPrinter plan(control, nullptr);
    plan.Walk();
    return plan.Conflicts().Problems();
}

void BatchRun::WaitForLateSteps(const RunRecorder& recorder)
{
    // A failure ends the run while other branches may still be executing; they
    // finish on their own threads and are logged after the summary. Waiting for
    // them lets the log, the closing lines and the report account for every step
    // that ran, and the process does not end under a step still writing.
    const QStringList running = recorder.RunningSteps();
    if (running.isEmpty() || !Plugin::APCExecuteFactory::Instance()->IsRunning())
        return;
    Say({QStringLiteral("mbrun: the run ended on a failure; waiting for the steps still running (%1): %2\n")
             .arg(running.size())
             .arg(running.join(QStringLiteral(", ")))});
    while (!m_signal && Plugin::APCExecuteFactory::Instance()->IsRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int BatchRun::Run(Plugin::APCModel& model, const FreeInputs& inputs)
{
    if (m_options.DryRun())
        return Plan(model, inputs);
    const QStringList conflicts = FileConflictsOf(model, inputs);
    if (!conflicts.isEmpty())
        return Refuse(conflicts);
    Plugin::SequenceControl control;
    auto* log = new StreamingLog;
    control.SetLog(log);
    RunRecorder recorder(control);

    // Each record goes to the report and the state as its step or round ends:
    // nothing of a long run piles up here.
    std::unique_ptr<ResumeState> state;
    if (m_options.Resume())
        state = std::make_unique<ResumeState>(m_options.ModelPath(), ResumeState::Mode::Run);
    recorder.onStepEnded = [&](const RunRecorder::Step& step) {
        if (state && step.status == Status::Succeeded && !step.executionText.isEmpty())
            state->Record(step.algorithm, step.executionText, step.written);
        if (m_report)
            m_report->AddStep(step);
    };
    recorder.onRoundEnded = [&](const RunRecorder::Round& round) {
        if (m_report)
            m_report->AddRound(round);
    };
    // Notes are written now and then, not after every step: a crash costs at most
    // the notes of the last seconds, whose steps then simply run again.
    QTimer flushTimer;
    bool stateFailed = false;
    auto flushState = [&] {
        if (!state)
            return;
        for (const QString& failure : state->Flush()) {
            Say({QStringLiteral("mbrun: cannot write the resume state %1\n").arg(failure)});
            stateFailed = true;
        }
    };
    QObject::connect(&flushTimer, &QTimer::timeout, flushState);
    if (state)
        flushTimer.start(2000);

    const bool terminal = isatty(fileno(stderr));
    if (terminal)
        control.NodeProgress.connect([](Plugin::SequenceNode* node, double value) {
            Console::Err(QStringLiteral("\r%1: %2%   ").arg(node->GetProcess()->GetDescription()).arg(value, 0, 'f', 0));
        });

    Plugin::ModelRun run(control, model);
    StopSignals stopSignals([&](int signal) {
        if (m_signal)
            return;
        m_signal = signal;
        Say({QStringLiteral("\nmbrun: %1: stopping the run\n").arg(StopSignals::Name(signal))});
        run.RequestStop();
    });
    bool stateHeld = false; // another run holds the state of a folder this one writes into
    if (state)
        control.SetStepFilter([&](Plugin::APCProcess* clone) {
            const bool upToDate = state->IsUpToDate(clone);
            if (!state->Conflict().isEmpty()) {
                if (!stateHeld) {
                    stateHeld = true;
                    Say({state->Conflict()});
                    run.RequestStop();
                }
                return true; // not run: its outputs are the other run's business
            }
            if (!upToDate)
                return false;
            // What a killed run left while writing these outputs: running the step
            // again would have removed it.
            const StepFiles files(clone);
            for (const QString& output : files.Outputs())
                HostRunner::RemoveStaleStaging(output);
            recorder.MarkSkipped(clone);
            return true;
        });
    StallWatch stall(control, [&] {
        Say({QStringLiteral("mbrun: the run cannot go on: no step is running or ready to run\n")});
        control.Stop();
    });

    if (!run.Start(inputs.List(), ModelName()))
        return Refuse({QStringLiteral("mbrun: the model cannot run: %1\n").arg(control.GetBuildError())});
    run.Wait();
    if (m_signal)
        HostRunner::DiscardUnfinishedOutputs(); // the process ends before the steps still writing
    else
        WaitForLateSteps(recorder);
    if (terminal)
        Console::Err(QStringLiteral("\n"));
    recorder.CloseOpenSteps(m_signal || stateHeld ? Status::Interrupted : Status::Unfinished);
    flushTimer.stop();
    flushState();

    QStringList closing = ClosingLines::EmptyIterators(recorder) + recorder.LeftOut().Warnings() +
                          ClosingLines::Failures(recorder);
    if (m_signal)
        closing += ClosingLines::Interrupted(recorder, StopSignals::Name(m_signal));
    Say(closing);

    ReportWriter::Outcome outcome = ReportWriter::Outcome::Succeeded;
    int code = Success;
    if (m_signal) {
        outcome = ReportWriter::Outcome::Interrupted;
        code = StopSignals::ExitCode(m_signal);
    } else if (stateHeld) {
        outcome = ReportWriter::Outcome::Refused;
        code = Refused;
    } else if (stall.Stalled()) {
        outcome = ReportWriter::Outcome::Stalled;
        code = Refused;
    } else if (recorder.Count(Status::Failed) > 0 || log->Failed() || stateFailed) {
        outcome = ReportWriter::Outcome::Failed;
        code = StepFailed;
    }
    // A report that cannot be written whole fails the run as a step would.
    if (!WriteReport(&recorder, outcome, code) && code == Success)
        code = StepFailed;
    return code;
}

} // namespace Mbrun
