#include "engine/SequenceNode.h"

#include "engine/APCExecuteFactory.h"
#include "engine/SequenceControl.h"
#include "model/APCProcess.h"

namespace Plugin {

SequenceNode::SequenceNode(SequenceControl* control, APCProcess* process)
    : m_executable(process), m_process(process), m_control(control)
{
}

SequenceNode::~SequenceNode()
{
    m_connections.clear();
    APCExecuteFactory::Instance()->Dispose(m_executable);
}

void SequenceNode::Wire()
{
    m_connections.emplace_back(m_executable->Progress.connect([this](double v, const QString&, void*) { return OnProgress(v); }));
    m_connections.emplace_back(m_executable->Finished.connect([this](void*) { OnExecuteFinished(); }));
    m_connections.emplace_back(m_executable->Canceled.connect([this](void*) { OnExecuteCanceled(); }));
    for (SequenceNode* pred : m_predecessors)
        m_connections.emplace_back(pred->Finished.connect([this](SequenceNode* p) { OnPredecessorFinished(p); }));
}

void SequenceNode::Run()
{
    SetStatus(Running);
    if (m_control->SkipStep(this))
        return;
    APCExecuteFactory::Instance()->Start(m_executable);
}

void SequenceNode::SetStatus(int status)
{
    m_status = status;
    m_control->NodeStatus(this, status);
}

void SequenceNode::OnPredecessorFinished(SequenceNode* predecessor)
{
    m_arrived.append(predecessor);
    if (m_arrived.size() != m_predecessors.size())
        return;
    m_arrived.clear();
    m_control->RunNode(this);
}

int SequenceNode::OnProgress(double value)
{
    m_control->NodeProgress(this, value);
    return 0;
}

void SequenceNode::OnExecuteFinished()
{
    m_control->NodeExecuteFinished(this);
}

void SequenceNode::OnExecuteCanceled()
{
    SetStatus(Waiting);
}

} // namespace Plugin
