#pragma once

#include "ReportWriter.h"

#include "engine/RunPlan.h"

#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>

namespace Plugin {
class APCModel;
class SequenceControl;
} // namespace Plugin

namespace Mbrun {

class CommandLine;
class FreeInputs;
class RunRecorder;

// One invocation of mbrun on a model: load, list or check, then run, resume or
// plan it, and tell how it went (log, closing lines, report, exit code).
class BatchRun
{
public:
    enum ExitCode { Success = 0, StepFailed = 1, Refused = 2 };

    explicit BatchRun(const CommandLine& options);
    BatchRun(const BatchRun&) = delete;
    BatchRun& operator=(const BatchRun&) = delete;
    ~BatchRun();

    // Does it all and returns the exit code. After a signal, steps may still be
    // busy on the pool: the caller ends the process without waiting for them.
    int Exec();

private:
    // Prints mbrun's own lines on standard error and notes them for the report.
    void Say(const QStringList& lines);
    // Says why the model cannot run, writes the report and returns the exit code.
    int Refuse(const QStringList& lines);
    // What a walk of the plan tells about the rounds of a run.
    struct Outline
    {
        QString iterator; // the outermost iterator's description; empty without one
        QList<Plugin::RunPlan::Round> rounds; // its rounds (their nodes are gone)
        QSet<QString> prologue; // ids of the steps outside every iterator, when there is one
        bool parallel = false;  // one file iterator, behind no step: rounds may run side by side
        bool failed = false;    // the iterator could not hand out its files
        QStringList folders;    // where the steps write
        QStringList warnings;
    };
    // Walks the plan as a run would check it; the lines that refuse the run.
    QStringList OutlineOf(Plugin::APCModel& model, const FreeInputs& inputs, Outline* outline);
    // Lets the outermost iterator hand out rounds round to last only; a refusal
    // when it cannot.
    QString SelectRounds(Plugin::APCModel& model, const FreeInputs& inputs, int round, int last);
    // Prints the rounds of the outermost iterator.
    int ListRounds(Plugin::APCModel& model, const FreeInputs& inputs);
    // Writes the rounds as a Snakemake workflow into --export's folder.
    int Export(Plugin::APCModel& model, const FreeInputs& inputs);
    // Runs the rounds in child processes, jobs at a time; countRounds tells how
    // many rounds there are once the steps outside the iterator have run.
    int RunJobs(const Outline& outline, int jobs, const std::function<int()>& countRounds);
    // Runs the model, or prints its plan for a dry run.
    int Run(Plugin::APCModel& model, const FreeInputs& inputs);
    int Plan(Plugin::APCModel& model, const FreeInputs& inputs);
    // Resets, resolves and builds as a run would, without starting; the build error,
    // or the cycle of steps that wait for each other.
    QString PrepareUnstarted(Plugin::SequenceControl& control, Plugin::APCModel& model, const FreeInputs& inputs);
    // Why the steps cannot start: a cycle, or files that steps of one round touch
    // with no arrow ordering them.
    QStringList FileConflictsOf(Plugin::APCModel& model, const FreeInputs& inputs);
    // Lets the steps still running when the run ended report, unless a signal
    // comes first.
    void WaitForLateSteps(const RunRecorder& recorder);
    // Writes the report of a run that has ended and returns its exit code: a
    // signal comes first, then a refusal, a run that could not go on, a failure.
    int Conclude(const RunRecorder* recorder, bool refused, bool stalled, bool failed);
    // The name the log gives the run.
    QString ModelName() const;
    // Writes the report, if asked for; false, said on standard error, when it
    // cannot be written whole.
    bool WriteReport(const RunRecorder* recorder, ReportWriter::Outcome outcome, int code);

    const CommandLine& m_options;
    std::unique_ptr<ReportWriter> m_report; // null without --report
    int m_signal = 0;
};

} // namespace Mbrun
