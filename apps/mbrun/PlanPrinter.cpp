#include "PlanPrinter.h"

#include "ClosingLines.h"
#include "Console.h"
#include "ResumeState.h"
#include "StepFiles.h"

#include "engine/APCFileIterator.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCProcess.h"

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
    : m_plan(control), m_state(state)
{
    const int never = control.GetNodes().size() - m_plan.StartOrder().size();
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

void PlanPrinter::Print(const QString& name)
{
    Add(QStringLiteral("Plan of the model %1 (dry run: no step runs, no file is written)\n").arg(name));
    m_plan.Walk(*this);
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
    m_plan.Walk(*this);
}

void PlanPrinter::OnIteratorFailed(SequenceNode* node, int depth, const QString& message)
{
    Plugin::APCProcess* iterator = node->GetProcess();
    Add(QStringLiteral("%1%2 (%3) fails: %4\n").arg(indent(depth), iterator->GetDescription(), iterator->GetClass(), message));
    m_failed = true;
}

void PlanPrinter::OnIteratorEmpty(SequenceNode* node)
{
    m_warnings << ClosingLines::EmptyIterator(static_cast<Plugin::APCFileIterator*>(node->GetProcess()));
}

void PlanPrinter::OnRound(const Plugin::RunPlan::Round& round)
{
    auto* iterator = static_cast<Plugin::APCFileIterator*>(round.iterator->GetProcess());
    m_leftOut.Note(iterator);
    m_rounds = round.number;
    Add(QStringLiteral("\n%1Round %2 of %3:\n").arg(indent(round.depth)).arg(round.number).arg(iterator->GetDescription()));
    for (const auto& f : round.files)
        Add(QStringLiteral("%1    %2 = %3\n").arg(indent(round.depth), f.first, f.second));
}

void PlanPrinter::OnStep(SequenceNode* node, int depth, int round)
{
    Plugin::APCProcess* process = node->GetProcess();
    const StepFiles files(process);
    m_conflicts.Add(node, round, files);
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
    for (const QString& out : files.Outputs())
        m_outputFolders.insert(QFileInfo(out).absolutePath());
}

} // namespace Mbrun
