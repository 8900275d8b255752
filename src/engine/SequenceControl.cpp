#include "engine/SequenceControl.h"

#include "engine/APCAlgo.h"
#include "engine/APCExecuteFactory.h"
#include "engine/APCIterator.h"
#include "engine/APCLog.h"
#include "engine/APCModelFile.h"
#include "engine/SequenceNode.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/FreeVars.h"
#include "model/SoftAssert.h"
#include "model/VarReference.h"

#include <QCoreApplication>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QThread>

namespace Plugin {

namespace {

// How a build error names an object: its description, or its id when it has none.
QString describe(const APCObject* object)
{
    const QString d = object->GetDescription();
    return QLatin1Char('"') + (d.isEmpty() ? object->GetName() : d) + QLatin1Char('"');
}

// {"description":"value",...} with references shown as their run values.
QString logParameters(APCProcess* process)
{
    APCModel* model = process->GetModel();
    QString text = QStringLiteral("{");
    bool first = true;
    for (const APCParameter& p : process->GetParameters()) {
        const QString value = RunValueOf(model, p.value);
        if (!first)
            text += QLatin1Char(',');
        first = false;
        text += QLatin1Char('"') + p.description + QStringLiteral("\":\"") + value + QLatin1Char('"');
    }
    return text + QLatin1Char('}');
}

} // namespace

SequenceControl::SequenceControl() : m_log(new APCLog) {}

SequenceControl::~SequenceControl()
{
    DeleteNodes();
    delete m_log;
}

void SequenceControl::SetLog(APCLog* log)
{
    if (!log)
        return;
    delete m_log;
    m_log = log;
}

void SequenceControl::SetName(const QString& name) { m_name = name; }

void SequenceControl::DeleteNodes()
{
    // Iterators left on the stack by a stopped run must not outlive their nodes:
    // they become null entries, which end a run like an empty stack does.
    const QSet<SequenceNode*> dying(m_nodes.begin(), m_nodes.end());
    for (SequenceNode*& entry : m_iterators)
        if (dying.contains(entry))
            entry = nullptr;
    qDeleteAll(m_nodes);
    m_nodes.clear();
}

void SequenceControl::Build(APCModel* model)
{
    m_model = model;
    ++m_generation;
    DeleteNodes();
    m_pending.clear();
    m_endCount = 0;
    m_endReached = 0;
    m_buildError.clear();
    if (!model)
        return;
    auto refuse = [this](const QString& reason) {
        m_buildError = reason;
        // Nothing may start from half a graph.
        m_pending.clear();
    };

    QHash<QString, SequenceNode*> byName;
    for (APCProcess* process : model->GetProcesses()) {
        auto* node = new SequenceNode(this, static_cast<APCProcess*>(process->Clone()));
        m_nodes.append(node);
        if (!byName.contains(process->GetName()))
            byName.insert(process->GetName(), node);
    }

    const QString kVar = QStringLiteral("var"), kProcess = QStringLiteral("process");
    // The arrows of each var in list order, as ArrowsOfVar gives them, in one pass.
    QHash<QString, QList<APCArrow*>> arrowsOfVar;
    for (APCArrow* arrow : model->GetArrows()) {
        const bool atHead = arrow->GetHeadType() == kVar;
        const bool atTail = arrow->GetTailType() == kVar;
        if (atHead)
            arrowsOfVar[arrow->GetHead()].append(arrow);
        if (atTail && !(atHead && arrow->GetTail() == arrow->GetHead()))
            arrowsOfVar[arrow->GetTail()].append(arrow);
    }
    for (APCArrow* arrow : model->GetArrows()) {
        if (arrow->GetHeadType() != kVar || arrow->GetTailType() != kProcess)
            continue;
        APCVar* var = model->FindVar(arrow->GetHead());
        APCProcess* writer = model->FindProcess(arrow->GetTail());
        SequenceNode* writerNode = writer ? byName.value(writer->GetName()) : nullptr;
        if (!var || !writer || !writerNode)
            return refuse(QCoreApplication::translate("SequenceControl", "An arrow joins %1 and %2, which the model does not both have")
                              .arg(arrow->GetTail(), arrow->GetHead()));
        for (APCArrow* other : arrowsOfVar.value(var->GetName())) {
            if (other == arrow)
                continue;
            // A second writer of the same var: the graph is not runnable.
            if (other->GetHeadType() == kVar) {
                APCProcess* second = model->FindProcess(other->GetTail());
                return refuse(QCoreApplication::translate("SequenceControl", "The variable %1 is written by two steps: %2 and %3")
                                  .arg(describe(var), describe(writer), second ? describe(second) : other->GetTail()));
            }
            SequenceNode* reader = byName.value(other->GetHead());
            if (!reader)
                return refuse(QCoreApplication::translate("SequenceControl", "The variable %1 feeds %2, which the model does not have")
                                  .arg(describe(var), other->GetHead()));
            writerNode->Successors().append(reader);
            reader->Predecessors().append(writerNode);
        }
    }

    for (SequenceNode* node : m_nodes) {
        if (node->Predecessors().isEmpty())
            m_pending.append(node);
        if (node->Successors().isEmpty()) {
            ++m_endCount;
            node->Finished.connect([this](SequenceNode* n) { OnEndNodeFinished(n); });
        }
        node->Wire();
    }
}

void SequenceControl::Start()
{
    if (m_state == Paused) {
        m_log->LogContinue(m_name);
    } else {
        QString parameters;
        if (m_model) {
            const FreeVars free(*m_model);
            if (!free.IsEmpty()) {
                parameters = QCoreApplication::translate("SequenceControl", "Parameter: ");
                for (int i = 0; i < free.Size(); ++i) {
                    if (i > 0)
                        parameters += QStringLiteral(", ");
                    parameters += free.List()[i]->GetDescription() + QStringLiteral(" = ") + free.List()[i]->GetRunValue();
                }
            }
        }
        m_thread = QThread::currentThread();
        if (m_context && m_context->thread() != m_thread)
            m_context.reset();
        m_log->LogStart(m_name, parameters);
    }
    m_state = Running;
    const QList<SequenceNode*> pending = m_pending;
    m_pending.clear();
    for (SequenceNode* node : pending)
        node->Run();
}

bool SequenceControl::OnRunThread() const
{
    return !m_thread || m_thread == QThread::currentThread();
}

void SequenceControl::RunNode(SequenceNode* node)
{
    MB_ASSERT(node, return);
    MB_CHECK(OnRunThread());
    if (m_state == Running)
        node->Run();
    else if (m_state == Paused)
        m_pending.append(node);
}

void SequenceControl::SetNodeStatus(SequenceNode* node, int status)
{
    node->SetStatus(status);
}

void SequenceControl::NodeExecuteFinished(SequenceNode* node)
{
    MB_ASSERT(node && node->GetExecutable() && node->GetProcess(), return);
    MB_CHECK(OnRunThread());
    int code = 0;
    QString message;
    node->GetExecutable()->GetError(code, message);

    APCProcess* process = node->GetProcess();
    auto* iterator = dynamic_cast<APCIterator*>(process);
    APCLogRecord record;
    record.name = dynamic_cast<APCAlgo*>(process) ? process->GetProcessName() : process->GetClass();
    record.description = process->GetDescription();
    record.parameters = logParameters(process);
    record.succeeded = code == 0;
    record.errorCode = code;
    record.errorMessage = message;
    if (!(iterator && iterator->IsEnded())) {
        m_log->LogStep(record);
        StepEnded(node, record);
    }

    if (code != 0) {
        if (!m_iterators.isEmpty() && m_iterators.top() == node) {
            m_iterators.pop();
            node->SetStatus(SequenceNode::Done);
        }
        ContinueOrFinish();
        return;
    }
    if (!iterator) {
        node->SetStatus(SequenceNode::Done);
    } else {
        if (m_iterators.isEmpty() || m_iterators.top() != node)
            m_iterators.push(node);
        if (m_model)
            m_model->ResolveVarValues(QList<APCVar*>());
    }
    node->Finished(node);
    NodeFinished(node);
}

void SequenceControl::SetStepFilter(std::function<bool(APCProcess*)> filter)
{
    m_stepFilter = std::move(filter);
}

bool SequenceControl::SkipStep(SequenceNode* node)
{
    MB_ASSERT(node && node->GetProcess(), return false);
    // Skipping an iterator would end its iteration, not save its work.
    if (!m_stepFilter || dynamic_cast<APCIterator*>(node->GetProcess()))
        return false;
    if (!m_stepFilter(node->GetProcess()))
        return false;
    // Ending the step here would run its successors, and maybe the end of the
    // run, inside whoever started it (Start's loop, a predecessor's report).
    if (!m_context)
        m_context = std::make_unique<QObject>();
    const quint64 generation = m_generation;
    QMetaObject::invokeMethod(m_context.get(), [this, node, generation] {
        if (generation == m_generation && m_state != Idle)
            NodeSkipped(node);
    }, Qt::QueuedConnection);
    return true;
}

void SequenceControl::NodeSkipped(SequenceNode* node)
{
    MB_CHECK(OnRunThread());
    APCProcess* process = node->GetProcess();
    // A clone that failed in an earlier pass must not report that error again.
    node->GetExecutable()->SetError(0, QString());
    m_log->Write(QLatin1Char('\n') + QCoreApplication::translate("SequenceControl", "Skip the step:") + QLatin1Char(' ') +
                 process->GetDescription() + QLatin1Char(' ') + logParameters(process) + QLatin1Char('\n'));
    node->SetStatus(SequenceNode::Done);
    node->Finished(node);
    NodeFinished(node);
}

void SequenceControl::OnEndNodeFinished(SequenceNode*)
{
    MB_ASSERT(m_endCount > 0, return);
    MB_CHECK(OnRunThread());
    if (++m_endReached < m_endCount)
        return;
    m_endReached = 0;
    if (!m_iterators.isEmpty() && m_iterators.top()) {
        SequenceNode* top = m_iterators.top();
        ResetSubtree(top, SequenceNode::Waiting);
        top->Run();
    } else {
        Finish();
    }
}

void SequenceControl::ContinueOrFinish()
{
    if (m_iterators.isEmpty() || !m_iterators.top()) {
        Finish();
        return;
    }
    SequenceNode* top = m_iterators.top();
    ResetSubtree(top, SequenceNode::Waiting);
    top->Run();
}

void SequenceControl::ResetSubtree(SequenceNode* node, int status)
{
    // Depth first, each node once: joins would otherwise be visited once per path.
    QSet<SequenceNode*> seen;
    QList<SequenceNode*> stack{node};
    while (!stack.isEmpty()) {
        SequenceNode* n = stack.takeLast();
        if (seen.contains(n))
            continue;
        seen.insert(n);
        n->SetStatus(status);
        const QList<SequenceNode*>& next = n->Successors();
        for (int i = next.size() - 1; i >= 0; --i)
            stack.append(next[i]);
    }
}

void SequenceControl::Finish()
{
    m_state = Idle;
    for (SequenceNode* node : m_nodes)
        node->SetStatus(SequenceNode::Waiting);
    m_log->LogSummary();
    NodeFinished(nullptr);
}

void SequenceControl::Pause()
{
    m_log->LogPause(m_name);
    m_state = Paused;
}

void SequenceControl::Stop()
{
    MB_CHECK(OnRunThread());
    ++m_generation;
    APCExecuteFactory::Instance()->CancelAll();
    StopNestedRuns();
    m_log->LogEnd(m_name);
    Finish();
}

void SequenceControl::StopNestedRuns()
{
    for (SequenceNode* node : m_nodes)
        if (auto* nested = dynamic_cast<APCModelFile*>(node->GetProcess()))
            nested->RequestStop();
}

void SequenceControl::GetError(int& code, QString& message)
{
    code = 0;
    message.clear();
    for (SequenceNode* node : m_nodes) {
        IAPCExecute* exe = node->GetExecutable();
        exe->GetError(code, message);
        if (code != 0 && !exe->IsSucceeded()) {
            message = exe->GetDescription() + QStringLiteral(" : ") + message;
            return;
        }
    }
}

} // namespace Plugin
