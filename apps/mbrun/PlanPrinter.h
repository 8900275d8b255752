#pragma once

#include "FileConflicts.h"
#include "LeftOutFiles.h"

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

// The plan of a dry run: walks a built graph in the order its steps would start,
// lets each file iterator hand out its rounds as it does in a run (on this
// thread, nothing else runs) and prints each round with its files and each step
// with its parameters as it would get them and the files it would write.
class PlanPrinter
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

private:
    // Plans nodes (in start order) at one depth of iteration.
    void PlanLevel(const QList<Plugin::SequenceNode*>& nodes, int depth);
    void PlanIterator(Plugin::SequenceNode* node, const QList<Plugin::SequenceNode*>& behind, int depth);
    void PlanStep(Plugin::SequenceNode* node, int depth);
    // The nodes reachable from node, in start order.
    QList<Plugin::SequenceNode*> Behind(Plugin::SequenceNode* node) const;
    void Add(const QString& text);

    Plugin::SequenceControl& m_control;
    ResumeState* m_state = nullptr;
    QList<Plugin::SequenceNode*> m_order;      // every node that can start, in start order
    QHash<Plugin::SequenceNode*, bool> m_done; // planned, or left to the iterator in front
    QHash<Plugin::SequenceNode*, int> m_roundsOf;
    QSet<QString> m_rewritten; // outputs of the steps that would run, as absolute paths
    QString m_buffer;
    QStringList m_warnings;
    FileConflicts m_conflicts;
    LeftOutFiles m_leftOut;
    int m_rounds = 0;
    int m_round = 0; // the round being planned, 0 outside any
    bool m_quiet = false;
    int m_steps = 0;
    int m_outputs = 0;
    int m_upToDate = 0;
    bool m_failed = false;
};

} // namespace Mbrun
