#include "BatchRun.h"

#include "ClosingLines.h"
#include "CommandLine.h"
#include "Console.h"
#include "FreeInputs.h"
#include "PlanPrinter.h"
#include "Preflight.h"
#include "ResumeState.h"
#include "RunRecorder.h"
#include "StallWatch.h"
#include "StepFiles.h"
#include "StopSignals.h"
#include "StreamingLog.h"

#include "HostRunner/OutputPaths.h"

#include "engine/APCExecuteFactory.h"
#include "engine/APCFileIterator.h"
#include "engine/ClusterExport.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "engine/StepGraph.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/ModelFileCheck.h"
#include "model/VarReference.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QThread>
#include <QTimer>

#include <limits>
#include <memory>
#include <mutex>

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
        return Refuse({QStringLiteral("mbrun: cannot open the model file %1: %2\n").arg(path, Plugin::ModelFileCheck::Explain(path))});

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
    if (m_options.GetAction() == CommandLine::Action::ListRounds)
        return ListRounds(model, inputs);
    if (m_options.GetAction() == CommandLine::Action::Export)
        return Export(model, inputs);
    return Run(model, inputs);
}

QString BatchRun::PrepareUnstarted(Plugin::SequenceControl& control, Plugin::APCModel& model, const FreeInputs& inputs)
{
    Plugin::ModelRun::Prepare(control, model, inputs.List(), ModelName());
    if (!control.GetBuildError().isEmpty())
        return control.GetBuildError();
    // Steps that wait for each other would never start: the run would only stall.
    const QList<Plugin::SequenceNode*> cycle = Plugin::StepGraph::Cycle(control.GetNodes());
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

QStringList BatchRun::OutlineOf(Plugin::APCModel& model, const FreeInputs& inputs, Outline* outline)
{
    Plugin::SequenceControl control;
    const QString buildError = PrepareUnstarted(control, model, inputs);
    if (!buildError.isEmpty())
        return {QStringLiteral("mbrun: the model cannot run: %1\n").arg(buildError)};
    PlanPrinter plan(control, nullptr);
    Plugin::RunPlan& graph = plan.Graph();
    Plugin::SequenceNode* outer = graph.OuterIterator();
    if (outer) {
        outline->iterator = outer->GetProcess()->GetDescription();
        for (Plugin::SequenceNode* node : graph.Prologue())
            outline->prologue.insert(node->GetProcess()->GetName());
        outline->parallel = graph.IteratorCount() == 1 && graph.PrologueLeadsToIterator();
    }
    plan.Walk();
    outline->rounds = graph.OuterRounds();
    outline->failed = plan.Failed();
    outline->folders = plan.OutputFolders();
    outline->warnings = plan.Warnings();
    return plan.Conflicts().Problems();
}

QString BatchRun::SelectRounds(Plugin::APCModel& model, const FreeInputs& inputs, int round, int last)
{
    Plugin::SequenceControl control;
    const QString buildError = PrepareUnstarted(control, model, inputs);
    if (!buildError.isEmpty())
        return QStringLiteral("mbrun: the model cannot run: %1\n").arg(buildError);
    Plugin::SequenceNode* outer = Plugin::RunPlan(control).OuterIterator();
    if (!outer)
        return round == 1 ? QString() : QStringLiteral("mbrun: the model has no iterator: its one round is 1\n");
    // The model's own iterator: each run's clone copies the choice.
    auto* iterator = dynamic_cast<Plugin::APCFileIterator*>(model.FindProcess(outer->GetProcess()->GetName()));
    if (iterator)
        iterator->SetRoundRange(round, last);
    return QString();
}

int BatchRun::ListRounds(Plugin::APCModel& model, const FreeInputs& inputs)
{
    Outline outline;
    const QStringList refusal = OutlineOf(model, inputs, &outline);
    if (!refusal.isEmpty())
        return Refuse(refusal);
    Say(outline.warnings);
    if (outline.failed) {
        Say({QStringLiteral("mbrun: the iterator \"%1\" cannot hand out its files (see --dry-run)\n").arg(outline.iterator)});
        return StepFailed;
    }
    if (outline.iterator.isEmpty())
        outline.rounds.append(Plugin::RunPlan::Round{1, 0, nullptr, {}, QString()});
    if (m_options.Json()) {
        QJsonArray rounds;
        for (const Plugin::RunPlan::Round& r : outline.rounds) {
            QJsonObject files;
            for (const auto& f : r.files)
                files.insert(f.first, f.second);
            rounds.append(QJsonObject{{QStringLiteral("round"), r.number},
                                      {QStringLiteral("file"), r.file.isEmpty() ? QJsonValue() : QJsonValue(r.file)},
                                      {QStringLiteral("files"), files}});
        }
        const QJsonObject root{{QStringLiteral("model"), QFileInfo(m_options.ModelPath()).absoluteFilePath()},
                               {QStringLiteral("iterator"), outline.iterator.isEmpty() ? QJsonValue() : QJsonValue(outline.iterator)},
                               {QStringLiteral("rounds"), rounds}};
        Console::Out(QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
        return Success;
    }
    QString text;
    for (const Plugin::RunPlan::Round& r : outline.rounds) {
        if (outline.iterator.isEmpty()) {
            text += QStringLiteral("Round 1: the whole model (it has no iterator)\n");
            continue;
        }
        text += QStringLiteral("Round %1 of %2: %3\n").arg(r.number).arg(outline.iterator, r.file);
        for (const auto& f : r.files)
            text += QStringLiteral("    %1 = %2\n").arg(f.first, f.second);
    }
    Console::Out(text);
    return Success;
}

int BatchRun::Export(Plugin::APCModel& model, const FreeInputs& inputs)
{
    Outline outline; // refused as a run would be
    const QStringList refusal = OutlineOf(model, inputs, &outline);
    if (!refusal.isEmpty())
        return Refuse(refusal);
    Say(outline.warnings);
    Plugin::ClusterExport workflow(m_options.ModelPath(), m_options.Settings(), QCoreApplication::applicationFilePath());
    QString error;
    if (!workflow.Plan(model, inputs.List(), &error))
        return Refuse({QStringLiteral("mbrun: the model cannot run: %1\n").arg(error)});
    const QString dir = m_options.ExportDir();
    if (!workflow.Write(dir, &error)) {
        Say({QStringLiteral("mbrun: cannot write the workflow into %1: %2\n").arg(dir, error)});
        return StepFailed;
    }
    const int jobs = workflow.HasIterator() ? workflow.Jobs().size() : 1;
    Console::Out(QStringLiteral("Wrote %1 job(s)%2 into %3. Run them with\n    %4\n")
                     .arg(jobs)
                     .arg(workflow.HasPrologue() ? QStringLiteral(" and the steps outside the iterator") : QString(),
                          QFileInfo(dir).absoluteFilePath(), Plugin::ClusterExport::LocalCommand(dir)));
    return Success;
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
    int round = m_options.Round();
    int last = m_options.LastRound();
    if (!m_options.RoundFile().isEmpty()) {
        // Named by its driving file, a round keeps its name when files are added
        // before it; its number is looked up now, by a walk that only lists the
        // rounds (a batch of thousands of jobs each does it once). The round's
        // own checks follow as for --round.
        Plugin::SequenceControl control;
        const QString buildError = PrepareUnstarted(control, model, inputs);
        if (!buildError.isEmpty())
            return Refuse({QStringLiteral("mbrun: the model cannot run: %1\n").arg(buildError)});
        Plugin::RunPlan plan(control);
        if (!plan.OuterIterator())
            return Refuse({QStringLiteral("mbrun: the model has no iterator: run it without --round-file\n")});
        Plugin::RunPlan::Visitor roundsOnly;
        plan.Walk(roundsOnly);
        const QString wanted = QFileInfo(m_options.RoundFile()).absoluteFilePath();
        for (const Plugin::RunPlan::Round& r : plan.OuterRounds())
            if (r.file == m_options.RoundFile() || QFileInfo(r.file).absoluteFilePath() == wanted)
                round = last = r.number;
        if (round == 0)
            return Refuse({QStringLiteral("mbrun: the iterator \"%1\" hands out no round driven by %2 (see --list-rounds)\n")
                               .arg(plan.OuterIterator()->GetProcess()->GetDescription(), m_options.RoundFile())});
    }
    const bool prologueOnly = m_options.PrologueOnly();
    Outline outline;
    if (round == 0 && !prologueOnly && m_options.Jobs() == 1) {
        const QStringList conflicts = FileConflictsOf(model, inputs);
        if (!conflicts.isEmpty())
            return Refuse(conflicts);
    } else {
        if (prologueOnly) {
            // An iterator handing out no round leaves the steps outside it.
            const QString refusal = SelectRounds(model, inputs, std::numeric_limits<int>::max(), 0);
            if (!refusal.isEmpty())
                return Refuse({refusal.contains(QLatin1String("its one round")) ? QStringLiteral("mbrun: the model has no iterator: run it without --prologue\n") : refusal});
        } else if (round > 0) {
            const QString refusal = SelectRounds(model, inputs, round, last);
            if (!refusal.isEmpty())
                return Refuse({refusal});
        }
        const QStringList conflicts = OutlineOf(model, inputs, &outline);
        if (!conflicts.isEmpty())
            return Refuse(conflicts);
        if (round > 0 && !outline.iterator.isEmpty() && outline.rounds.isEmpty() && !outline.failed)
            return Refuse({QStringLiteral("mbrun: there is no round %1: the iterator \"%2\" hands out fewer (see --list-rounds)\n")
                               .arg(round)
                               .arg(outline.iterator)});
        const int jobs = m_options.Jobs() == 0 ? QThread::idealThreadCount() : m_options.Jobs();
        if (round == 0 && jobs > 1 && outline.parallel && outline.rounds.size() > 1)
            return RunJobs(outline, jobs, [&] {
                // The steps outside the iterator may have made files it lists.
                Outline now;
                return OutlineOf(model, inputs, &now).isEmpty() ? now.rounds.size() : 0;
            });
    }
    Plugin::SequenceControl control;
    auto* log = new StreamingLog;
    control.SetLog(log);
    RunRecorder recorder(control);
    if (round > 0)
        recorder.SetFirstRound(round);

    // Each record goes to the report and the state as its step or round ends:
    // nothing of a long run piles up here.
    const bool resume = m_options.Resume();
    const ResumeState::Mode mode = m_options.StateHeld() ? ResumeState::Mode::Shared
                                   : resume                ? ResumeState::Mode::Run
                                                           : ResumeState::Mode::Record;
    auto state = std::make_unique<ResumeState>(m_options.ModelPath(), mode);
    recorder.onStepEnded = [&](const RunRecorder::Step& step) {
        if (step.status == Status::Succeeded && !step.executionText.isEmpty())
            state->Record(step.algorithm, step.executionText, step.written);
        if (m_report)
            m_report->AddStep(step);
    };
    recorder.onRoundEnded = [&](const RunRecorder::Round& round) {
        if (m_report)
            m_report->AddRound(round);
        if (m_options.RoundMarks())
            Console::Err(CommandLine::RoundEndMark());
    };
    // Notes are written now and then, not after every step: a crash costs at most
    // the notes of the last seconds, whose steps then simply run again.
    QTimer flushTimer;
    bool stateFailed = false;
    auto flushState = [&] {
        for (const QString& failure : state->Flush()) {
            Say({QStringLiteral("mbrun: cannot write the resume state %1\n").arg(failure)});
            // A plain run only records for a later --resume: its outputs stand.
            stateFailed = stateFailed || resume;
        }
    };
    QObject::connect(&flushTimer, &QTimer::timeout, flushState);
    flushTimer.start(2000);

    const bool terminal = isatty(fileno(stderr));
    if (terminal) {
        // The outermost iterator's share of its files leads the line, so that a
        // batch shows where it stands while each step shows its own share. Steps
        // report from the pool's threads, which may outlive this function at a stop.
        struct Batch
        {
            std::mutex lock;
            QString iterator, text;
        };
        auto batch = std::make_shared<Batch>();
        control.NodeProgress.connect([batch](Plugin::SequenceNode* node, double value) {
            Plugin::APCProcess* process = node->GetProcess();
            const QString text = QStringLiteral("%1: %2%").arg(process->GetDescription()).arg(value, 0, 'f', 0);
            std::lock_guard<std::mutex> hold(batch->lock);
            if (dynamic_cast<Plugin::APCIterator*>(process) && (batch->iterator.isEmpty() || batch->iterator == process->GetName())) {
                batch->iterator = process->GetName();
                batch->text = text;
                Console::Err(QStringLiteral("\r%1   ").arg(text));
                return;
            }
            Console::Err(QStringLiteral("\r%1%2   ").arg(batch->text.isEmpty() ? QString() : batch->text + QStringLiteral(", "), text));
        });
    }

    Plugin::ModelRun run(control, model);
    StopSignals stopSignals([&](int signal) {
        if (m_signal)
            return;
        m_signal = signal;
        Say({QStringLiteral("\nmbrun: %1: stopping the run\n").arg(StopSignals::Name(signal))});
        run.RequestStop();
    });
    bool stateHeld = false; // another run holds the state of a folder this one writes into
    // One round of a batch: the steps outside the iterator have run before, unless
    // their outputs are missing.
    auto priorStep = [&](Plugin::APCProcess* clone) {
        if (round == 0 || !outline.prologue.contains(clone->GetName()))
            return false;
        if (m_options.NoPrologue())
            return true;
        if (m_options.WithPrologue())
            return false;
        const StepFiles files(clone);
        for (const QString& output : files.Outputs())
            if (!QFileInfo::exists(output))
                return false;
        return !files.Outputs().isEmpty();
    };
    if (resume || !outline.prologue.isEmpty())
        control.SetStepFilter([&](Plugin::APCProcess* clone) {
            if (priorStep(clone)) {
                recorder.MarkSkipped(clone);
                return true;
            }
            if (!resume)
                return false;
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

    QStringList closing = (prologueOnly ? QStringList() : ClosingLines::EmptyIterators(recorder)) + recorder.LeftOut().Warnings() +
                          ClosingLines::Failures(recorder);
    if (m_signal)
        closing += ClosingLines::Interrupted(recorder, StopSignals::Name(m_signal));
    Say(closing);

    return Conclude(&recorder, stateHeld, stall.Stalled(), recorder.Count(Status::Failed) > 0 || log->Failed() || stateFailed);
}

int BatchRun::Conclude(const RunRecorder* recorder, bool refused, bool stalled, bool failed)
{
    ReportWriter::Outcome outcome = ReportWriter::Outcome::Succeeded;
    int code = Success;
    if (m_signal) {
        outcome = ReportWriter::Outcome::Interrupted;
        code = StopSignals::ExitCode(m_signal);
    } else if (refused) {
        outcome = ReportWriter::Outcome::Refused;
        code = Refused;
    } else if (stalled) {
        outcome = ReportWriter::Outcome::Stalled;
        code = Refused;
    } else if (failed) {
        outcome = ReportWriter::Outcome::Failed;
        code = StepFailed;
    }
    // A report that cannot be written whole fails the run as a step would.
    if (!WriteReport(recorder, outcome, code) && code == Success)
        code = StepFailed;
    return code;
}

} // namespace Mbrun
