#pragma once

#include <QList>
#include <boost/signals2.hpp>

#include <vector>

namespace Plugin {

class APCProcess;
class IAPCExecute;
class SequenceControl;

// One step of a built run: a private clone of a model process, its neighbours in
// the graph and its status. Lives on the control's thread.
class SequenceNode
{
public:
    enum Status { Waiting = 0, Running = 1, Done = 2 };

    // Takes ownership of process (a clone).
    SequenceNode(SequenceControl* control, APCProcess* process);
    SequenceNode(const SequenceNode&) = delete;
    SequenceNode& operator=(const SequenceNode&) = delete;
    ~SequenceNode();

    // Connects the executable's signals and the predecessors' Finished.
    void Wire();
    void Run();
    void SetStatus(int status);

    void OnPredecessorFinished(SequenceNode* predecessor);
    int OnProgress(double value);
    void OnExecuteFinished();
    void OnExecuteCanceled();

    IAPCExecute* GetExecutable() const { return m_executable; }
    APCProcess* GetProcess() const { return m_process; }
    QList<SequenceNode*>& Predecessors() { return m_predecessors; }
    QList<SequenceNode*>& Successors() { return m_successors; }
    int GetStatus() const { return m_status; }

    // Emitted when this node's step ended well, on the control's thread.
    boost::signals2::signal<void(SequenceNode*)> Finished;

private:
    IAPCExecute* m_executable = nullptr; // owned (the same object as m_process)
    APCProcess* m_process = nullptr;
    QList<SequenceNode*> m_predecessors;
    QList<SequenceNode*> m_successors;
    SequenceControl* m_control = nullptr;
    int m_status = Waiting;
    QList<SequenceNode*> m_arrived;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

} // namespace Plugin
