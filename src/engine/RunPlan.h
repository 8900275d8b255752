#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

namespace Plugin {

class APCProcess;
class SequenceControl;
class SequenceNode;

// The plan of a run, read from a built graph that never starts: the steps in the
// order they would start, the steps that stand outside every iterator, and each
// round the iterators would hand out. Walk() lets each file iterator hand out its
// rounds exactly as in a run (on this thread; it only lists folders) and tells a
// visitor about every round and every step of it, so that the dry run, the
// conflict check and the listing of rounds all read one walk.
class RunPlan
{
public:
    // One set of files an iterator hands out.
    struct Round
    {
        int number = 0; // 1, 2, ... over the whole walk, as a run numbers them
        int depth = 0;  // 0 for an iterator behind no other
        SequenceNode* iterator = nullptr;
        QList<QPair<QString, QString>> files; // output name -> file, in parameter order
        QString file; // the driving file: the first output's in name order
    };

    class Visitor
    {
    public:
        virtual ~Visitor() = default;
        virtual void OnRound(const Round&) {}
        // A step (no iterator) as it would start; round is Round::number, 0 outside any.
        virtual void OnStep(SequenceNode*, int /*depth*/, int /*round*/) {}
        // The iterator could not hand out its files: the run would fail there.
        virtual void OnIteratorFailed(SequenceNode*, int /*depth*/, const QString& /*message*/) {}
        // The iterator ended without handing out a round.
        virtual void OnIteratorEmpty(SequenceNode*) {}
    };

    // control has been built and is never started.
    explicit RunPlan(SequenceControl& control);
    RunPlan(const RunPlan&) = delete;
    RunPlan& operator=(const RunPlan&) = delete;

    // Every node that can start, in start order; nodes in a cycle are left out.
    const QList<SequenceNode*>& StartOrder() const { return m_order; }
    // The first file iterator in start order that stands behind no other, or null.
    SequenceNode* OuterIterator() const;
    // How many file iterators the graph has.
    int IteratorCount() const;
    // The steps behind no iterator, iterators left out, in start order.
    QList<SequenceNode*> Prologue() const;
    // The nodes reachable from node, in start order.
    QList<SequenceNode*> Behind(SequenceNode* node) const;

    // Walks the plan once; the iterators' clones are used up.
    void Walk(Visitor& visitor);
    // The rounds OuterIterator() handed out in the walk (their nodes die with the control).
    const QList<Round>& OuterRounds() const { return m_outerRounds; }
    // Whether every step outside the iterators leads into OuterIterator(): only
    // then do they run once, before its first round, so that rounds may run apart.
    bool PrologueLeadsToIterator() const;

    // The files an iterator has just handed out, and the one that drives them.
    static QList<QPair<QString, QString>> RoundFiles(APCProcess* iterator);
    static QString DrivingFile(const QList<QPair<QString, QString>>& files);

private:
    void WalkLevel(const QList<SequenceNode*>& nodes, int depth);
    void WalkIterator(SequenceNode* node, const QList<SequenceNode*>& behind, int depth);

    SequenceControl& m_control;
    QList<SequenceNode*> m_order;
    Visitor* m_visitor = nullptr;
    QList<Round> m_outerRounds;
    QHash<SequenceNode*, bool> m_done; // walked, or left to the iterator in front
    int m_rounds = 0;
    int m_round = 0; // the round being walked, 0 outside any
};

} // namespace Plugin
