#include "StepGraph.h"

#include "engine/SequenceNode.h"

#include <QHash>

namespace Mbrun {

using Plugin::SequenceNode;

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

} // namespace Mbrun
