#include "engine/RunPlan.h"

#include "engine/APCExecuteFactory.h"
#include "engine/APCFileIterator.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "engine/StepGraph.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/VarReference.h"

#include <QSet>

#include <algorithm>

namespace Plugin {

namespace {

bool isFileIterator(SequenceNode* node)
{
    return dynamic_cast<APCFileIterator*>(node->GetProcess()) != nullptr;
}

} // namespace

RunPlan::RunPlan(SequenceControl& control) : m_control(control), m_order(StepGraph::StartOrder(control.GetNodes())) {}

QList<SequenceNode*> RunPlan::Behind(SequenceNode* node) const
{
    const QSet<SequenceNode*> reached = StepGraph::Behind(node);
    QList<SequenceNode*> behind;
    for (SequenceNode* n : m_order)
        if (reached.contains(n))
            behind.append(n);
    return behind;
}

SequenceNode* RunPlan::OuterIterator() const
{
    // An iterator behind another starts after it: the first one stands behind none.
    for (SequenceNode* node : m_order)
        if (isFileIterator(node))
            return node;
    return nullptr;
}

int RunPlan::IteratorCount() const
{
    int count = 0;
    for (SequenceNode* node : m_control.GetNodes())
        count += isFileIterator(node) ? 1 : 0;
    return count;
}

QList<SequenceNode*> RunPlan::Prologue() const
{
    QSet<SequenceNode*> inside;
    for (SequenceNode* node : m_order)
        if (isFileIterator(node)) {
            inside.insert(node);
            inside.unite(StepGraph::Behind(node));
        }
    QList<SequenceNode*> prologue;
    for (SequenceNode* node : m_order)
        if (!inside.contains(node))
            prologue.append(node);
    return prologue;
}

bool RunPlan::PrologueLeadsToIterator() const
{
    // A step outside that does not lead to the iterator is an end of the graph the
    // later rounds never reach again: the run would stall there.
    SequenceNode* outer = OuterIterator();
    for (SequenceNode* node : Prologue())
        if (!outer || !StepGraph::Behind(node).contains(outer))
            return false;
    return true;
}

QList<QPair<QString, QString>> RunPlan::RoundFiles(APCProcess* iterator)
{
    QList<QPair<QString, QString>> files;
    for (const APCParameter& p : iterator->GetParameters()) {
        if (p.direction != 1)
            continue;
        const QString value = RunValueOf(iterator->GetModel(), p.value);
        if (!value.isEmpty())
            files.append({p.name, value});
    }
    return files;
}

QString RunPlan::DrivingFile(const QList<QPair<QString, QString>>& files)
{
    // The first output in name order drives the pairing of the others.
    auto first = std::min_element(files.begin(), files.end(),
                                  [](const QPair<QString, QString>& a, const QPair<QString, QString>& b) { return a.first < b.first; });
    return first != files.end() ? first->second : QString();
}

void RunPlan::Walk(Visitor& visitor)
{
    m_visitor = &visitor;
    WalkLevel(m_order, 0);
    m_visitor = nullptr;
}

void RunPlan::WalkLevel(const QList<SequenceNode*>& nodes, int depth)
{
    for (SequenceNode* node : nodes) {
        if (m_done.value(node))
            continue;
        m_done.insert(node, true);
        if (isFileIterator(node)) {
            // What stands behind an iterator is walked once per round, not here.
            const QList<SequenceNode*> behind = Behind(node);
            for (SequenceNode* n : behind)
                m_done.insert(n, true);
            WalkIterator(node, behind, depth);
        } else {
            m_visitor->OnStep(node, depth, m_round);
        }
    }
}

void RunPlan::WalkIterator(SequenceNode* node, const QList<SequenceNode*>& behind, int depth)
{
    auto* iterator = static_cast<APCFileIterator*>(node->GetProcess());
    APCModel* model = m_control.GetModel();
    const bool outermost = depth == 0 && node == OuterIterator();
    int handedOut = 0;
    for (;;) {
        // The iterator hands out its next files exactly as in a run; it only lists folders.
        APCExecuteFactory::Instance()->Execute(iterator);
        int code = 0;
        QString message;
        iterator->GetError(code, message);
        if (iterator->IsEnded())
            break;
        if (code != 0) {
            m_visitor->OnIteratorFailed(node, depth, message);
            return;
        }
        ++handedOut;
        if (model)
            model->ResolveVarValues(QList<APCVar*>());
        Round round;
        round.number = ++m_rounds;
        round.depth = depth;
        round.iterator = node;
        round.files = RoundFiles(iterator);
        round.file = DrivingFile(round.files);
        if (outermost)
            m_outerRounds.append(round);
        m_visitor->OnRound(round);
        for (SequenceNode* n : behind)
            m_done.insert(n, false);
        const int outer = m_round;
        m_round = m_rounds;
        WalkLevel(behind, depth + 1);
        m_round = outer;
    }
    if (handedOut == 0)
        m_visitor->OnIteratorEmpty(node);
}

} // namespace Plugin
