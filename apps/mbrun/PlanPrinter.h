#pragma once

#include "FileConflicts.h"
#include "LeftOutFiles.h"

#include "engine/RunPlan.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Plugin {
class SequenceControl;
class SequenceNode;
} // namespace Plugin

namespace Mbrun {

class ResumeState;

// The plan of a dry run, as the engine walks it: prints each round with its files
// and each step with its parameters as it would get them and the files it would
// write.
class PlanPrinter : private Plugin::RunPlan::Visitor
{
public:
    // control has been built and is never started; state may be null, else the
    // steps --resume would skip are marked.
    PlanPrinter(Plugin::SequenceControl& control, ResumeState* state);
    PlanPrinter(const PlanPrinter&) = delete;
    PlanPrinter& operator=(const PlanPrinter&) = delete;

    // Prints the plan on standard output.
    void Print(const QString& name);
    // Walks the plan printing nothing: for its conflicts and warnings only.
    void Walk();
    // Files that steps of one round touch with no arrow ordering them.
    const FileConflicts& Conflicts() const { return m_conflicts; }
    // An iterator could not hand out its files: the run would fail there.
    bool Failed() const { return m_failed; }
    // mbrun's warnings about the plan: iterators that found nothing or left files
    // out, steps that never start.
    QStringList Warnings() const { return m_warnings + m_leftOut.Warnings(); }
    // The folders of the files the steps write, once walked.
    QStringList OutputFolders() const { return m_outputFolders.values(); }
    // The plan the walk reads.
    Plugin::RunPlan& Graph() { return m_plan; }

private:
    void OnRound(const Plugin::RunPlan::Round& round) override;
    void OnStep(Plugin::SequenceNode* node, int depth, int round) override;
    void OnIteratorFailed(Plugin::SequenceNode* node, int depth, const QString& message) override;
    void OnIteratorEmpty(Plugin::SequenceNode* node) override;
    void Add(const QString& text);

    Plugin::RunPlan m_plan;
    ResumeState* m_state = nullptr;
    QSet<QString> m_outputFolders;
    QSet<QString> m_rewritten; // outputs of the steps that would run, as absolute paths
    QString m_buffer;
    QStringList m_warnings;
    FileConflicts m_conflicts;
    LeftOutFiles m_leftOut;
    int m_rounds = 0;
    bool m_quiet = false;
    int m_steps = 0;
    int m_outputs = 0;
    int m_upToDate = 0;
    bool m_failed = false;
};

} // namespace Mbrun
