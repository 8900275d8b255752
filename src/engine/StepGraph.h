#pragma once

#include <QList>
#include <QSet>

namespace Plugin {

class SequenceNode;

// The shape of a built run, as the plan, the report and the checks read it.
class StepGraph
{
public:
    // The nodes in an order they can start in: each after all it waits for, ties
    // in model order. Nodes that wait for each other are left out.
    static QList<SequenceNode*> StartOrder(const QList<SequenceNode*>& nodes);
    // A cycle of nodes that wait for each other, from its first node in model order
    // round to the node before it comes back; empty when there is none.
    static QList<SequenceNode*> Cycle(const QList<SequenceNode*>& nodes);
    // The nodes that stand behind node (reachable through its successors).
    static QSet<SequenceNode*> Behind(SequenceNode* node);
};

} // namespace Plugin
