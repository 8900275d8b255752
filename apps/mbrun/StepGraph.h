#pragma once

#include <QList>
#include <QSet>

namespace Plugin {
class SequenceNode;
}

namespace Mbrun {

// The shape of a built run, as the report and the plan read it.
class StepGraph
{
public:
    // The nodes in an order they can start in: each after all it waits for, ties
    // in model order. Nodes that wait for each other are left out.
    static QList<Plugin::SequenceNode*> StartOrder(const QList<Plugin::SequenceNode*>& nodes);
    // A cycle of nodes that wait for each other, from its first node in model order
    // round to the node before it comes back; empty when there is none.
    static QList<Plugin::SequenceNode*> Cycle(const QList<Plugin::SequenceNode*>& nodes);
    // The nodes that stand behind node (reachable through its successors).
    static QSet<Plugin::SequenceNode*> Behind(Plugin::SequenceNode* node);
};

} // namespace Mbrun
