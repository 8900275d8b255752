#include "PlanPrinter.h"

#include "ClosingLines.h"
#include "Console.h"
#include "ResumeState.h"
#include "StepFiles.h"
#include "StepGraph.h"

#include "engine/APCExecuteFactory.h"
#include "engine/APCFileIterator.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QFileInfo>
#include <QSet>

namespace Mbrun {

using Plugin::SequenceNode;

namespace {

QString indent(int depth)
{
    return QString(depth * 2, QLatin1Char(' '));
}

QString absolute(const QString& path)
{
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

PlanPrinter::PlanPrinter(Plugin::SequenceControl& control, ResumeState* state)
    : m_control(control), m_state(state), m_order(StepGraph::StartOrder(control.GetNodes()))
{
    const int never = control.GetNodes().size() - m_order.size();
    if (never > 0)
        m_warnings << QStringLiteral("mbrun: warning: %1 steps wait for each other and would never start\n").arg(never);
}

void PlanPrinter::Add(const QString& text)
{
    if (m_quiet)
        return;
    m_buffer += text;
    if (m_buffer.size() > 1 << 16) {
        Console::Out(m_buffer);
        m_buffer.clear();
    }
}

QList<SequenceNode*> PlanPrinter::Behind(SequenceNode* node) const
{
    const QSet<SequenceNode*> reached = StepGraph::Behind(node);
    QList<SequenceNode*> behind;
    for (SequenceNode* n : m_order)
        if (reached.contains(n))
            behind.append(n);
    return behind;
}

void PlanPrinter::Print(const QString& name)
{
    Add(QStringLiteral("Plan of the model %1 (dry run: no step runs, no file is written)\n").arg(name));
    PlanLevel(m_order, 0);
    Add(QStringLiteral("\nPlan: %1 rounds, %2 steps, %3 output files").arg(m_rounds).arg(m_steps).arg(m_outputs));
    if (m_upToDate > 0)
        Add(QStringLiteral(", %1 steps up to date").arg(m_upToDate));
    Add(QStringLiteral("; nothing was run.\n"));
    Console::Out(m_buffer);
    m_buffer.clear();
}

void PlanPrinter::Walk()
{
    m_quiet = true;
    PlanLevel(m_order, 0);
}

void PlanPrinter::PlanLevel(const QList<SequenceNode*>& nodes, int depth)
{
    for (SequenceNode* node : nodes) {
        if (m_done.value(node))
            continue;
        m_done.insert(node, true);
        if (dynamic_cast<Plugin::APCFileIterator*>(node->GetProcess())) {
            // What stands behind an iterator is planned once per round, not here.
            const QList<SequenceNode*> behind = Behind(node);
            for (SequenceNode* n : behind)
                m_done.insert(n, true);
            PlanIterator(node, behind, depth);
        } else {
            PlanStep(node, depth);
        }
    }
}

void PlanPrinter::PlanIterator(SequenceNode* node, const QList<SequenceNode*>& behind, int depth)
{
    auto* iterator = static_cast<Plugin::APCFileIterator*>(node->GetProcess());
    Plugin::APCModel* model = m_control.GetModel();
    for (;;) {
        // The iterator hands out its next files exactly as in a run; it only lists folders.
        Plugin::APCExecuteFactory::Instance()->Execute(iterator);
        int code = 0;
        QString message;
        iterator->GetError(code, message);
        if (iterator->IsEnded())
            break;
        if (code != 0) {
            Add(QStringLiteral("%1%2 (%3) fails: %4\n").arg(indent(depth), iterator->GetDescription(), iterator->GetClass(), message));
            m_failed = true;
            return;
        }
        m_leftOut.Note(iterator);
        ++m_rounds;
        ++m_roundsOf[node];
        if (model)
            model->ResolveVarValues(QList<Plugin::APCVar*>());
        Add(QStringLiteral("\n%1Round %2 of %3:\n").arg(indent(depth)).arg(m_rounds).arg(iterator->GetDescription()));
        const StepFiles round(iterator);
        for (const auto& f : round.OutputParameters())
            Add(QStringLiteral("%1    %2 = %3\n").arg(indent(depth), f.first, f.second));
        for (SequenceNode* n : behind)
            m_done.insert(n, false);
        const int outer = m_round;
        m_round = m_rounds;
        PlanLevel(behind, depth + 1);
        m_round = outer;
    }
    if (m_roundsOf.value(node) == 0)
        m_warnings << ClosingLines::EmptyIterator(iterator);
}

void PlanPrinter::PlanStep(SequenceNode* node, int depth)
{
    Plugin::APCProcess* process = node->GetProcess();
    const StepFiles files(process);
    m_conflicts.Add(node, m_round, files);
    ++m_steps;
    Add(QStringLiteral("%1Step %2: %3 (%4)").arg(indent(depth)).arg(m_steps).arg(process->GetDescription(), StepFiles::Algorithm(process)));
    if (m_state) {
        // A step that reads what an earlier step writes anew would find it newer.
        bool upToDate = m_state->IsUpToDate(process);
        for (const QString& in : files.Inputs())
            upToDate = upToDate && !m_rewritten.contains(absolute(in));
        if (upToDate) {
            ++m_upToDate;
            Add(QStringLiteral(", up to date: --resume skips it"));
        } else {
            for (const QString& out : files.Outputs())
                m_rewritten.insert(absolute(out));
        }
    }
    Add(QStringLiteral("\n"));
    const QSet<QString> outputs(files.Outputs().begin(), files.Outputs().end());
    for (const auto& p : files.Parameters())
        Add(QStringLiteral("%1    %2 = %3%4\n")
                .arg(indent(depth), p.first, p.second, outputs.contains(p.second) ? QStringLiteral("   (output)") : QString()));
    m_outputs += files.Outputs().size();
}

} // namespace Mbrun
