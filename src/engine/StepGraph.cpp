#include "engine/StepGraph.h"

#include "engine/SequenceNode.h"

#include <QHash>

namespace Plugin {

QList<SequenceNode*> StepGraph::StartOrder(const QList<SequenceNode*>& nodes)
{
    // A node is listed once per edge among its predecessors and as often among
    // the successors of the node at the other end, so the counts agree.
    QHash<SequenceNode*, int> waiting;
    QList<SequenceNode*> ready;
    for (SequenceNode* n : nodes) {
        waiting.insert(n, n->Predecessors().size());
        if (n->Predecessors().isEmpty())
            ready.append(n);
    }
    QList<SequenceNode*> order;
    while (!ready.isEmpty()) {
        SequenceNode* n = ready.takeFirst();
        order.append(n);
        for (SequenceNode* s : n->Successors())
            if (--waiting[s] == 0)
                ready.append(s);
    }
    return order;
}

QList<SequenceNode*> StepGraph::Cycle(const QList<SequenceNode*>& nodes)
{
    // Depth first, without recursion: a long chain of steps must not exhaust the stack.
    enum State { Unseen, OnPath, Done };
    QHash<SequenceNode*, State> state;
    for (SequenceNode* start : nodes) {
        if (state.value(start, Unseen) != Unseen)
            continue;
        QList<SequenceNode*> path{start};
        QList<int> next{0}; // the successor of path's node to look at next
        state.insert(start, OnPath);
        while (!path.isEmpty()) {
            SequenceNode* n = path.last();
            const QList<SequenceNode*>& successors = n->Successors();
            if (next.last() == successors.size()) {
                state.insert(n, Done);
                path.removeLast();
                next.removeLast();
                continue;
            }
            SequenceNode* s = successors[next.last()++];
            const State seen = state.value(s, Unseen);
            if (seen == OnPath)
                return path.mid(path.indexOf(s));
            if (seen == Unseen) {
                state.insert(s, OnPath);
                path.append(s);
                next.append(0);
            }
        }
    }
    return {};
}

QSet<SequenceNode*> StepGraph::Behind(SequenceNode* node)
{
    QSet<SequenceNode*> reached;
    QList<SequenceNode*> todo = node->Successors();
    while (!todo.isEmpty()) {
        SequenceNode* n = todo.takeLast();
        if (n != node && !reached.contains(n)) {
            reached.insert(n);
            todo += n->Successors();
        }
    }
    return reached;
}

} // namespace Plugin
