#include "RunRecorder.h"

#include "StepFiles.h"
#include "StepGraph.h"

#include "engine/APCAlgo.h"
#include "engine/APCFileIterator.h"
#include "engine/APCIterator.h"
#include "engine/APCLogRecord.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"

#include <QFileInfo>

#include <algorithm>

namespace Mbrun {

using Plugin::APCProcess;
using Plugin::SequenceNode;

namespace {

bool isIterator(SequenceNode* node)
{
    return dynamic_cast<Plugin::APCIterator*>(node->GetProcess()) != nullptr;
}

} // namespace

RunRecorder::RunRecorder(Plugin::SequenceControl& control) : m_control(control)
{
    m_connections.emplace_back(control.NodeStatus.connect([this](SequenceNode* n, int s) { OnStatus(n, s); }));
    m_connections.emplace_back(
        control.StepEnded.connect([this](SequenceNode* n, const Plugin::APCLogRecord& r) { OnStepEnded(n, r); }));
}

RunRecorder::~RunRecorder() = default;

QString RunRecorder::StatusText(Status status)
{
    switch (status) {
    case Status::Running: return QStringLiteral("running");
    case Status::Succeeded: return QStringLiteral("succeeded");
    case Status::Failed: return QStringLiteral("failed");
    case Status::Skipped: return QStringLiteral("skipped");
    case Status::Interrupted: return QStringLiteral("interrupted");
    case Status::Unfinished: return QStringLiteral("unfinished");
    }
    return QString();
}

int RunRecorder::Count(Status status) const
{
    return int(std::count_if(m_steps.begin(), m_steps.end(), [status](const Step& s) { return s.status == status; }));
}

QStringList RunRecorder::RunningSteps() const
{
    QList<int> open = m_open.values();
    std::sort(open.begin(), open.end());
    QStringList names;
    for (int index : open)
        names << QLatin1Char('"') + m_steps[size_t(index)].description + QLatin1Char('"');
    return names;
}

void RunRecorder::MapIterators()
{
    m_behind.clear();
    const QList<SequenceNode*>& nodes = m_control.GetNodes();
    for (SequenceNode* node : nodes)
        m_behind.insert(node, {});
    for (SequenceNode* iterator : nodes)
        if (isIterator(iterator))
            for (SequenceNode* n : StepGraph::Behind(iterator))
                m_behind[n].append(iterator);
}

int RunRecorder::RoundOf(SequenceNode* node)
{
    if (!m_behind.contains(node))
        MapIterators();
    int round = 0;
    for (SequenceNode* iterator : m_behind.value(node))
        round = std::max(round, m_iteratorRound.value(iterator));
    return round;
}

int RunRecorder::Open(SequenceNode* node)
{
    APCProcess* process = node->GetProcess();
    Step step;
    step.id = process->GetName();
    step.description = process->GetDescription();
    step.algorithm = StepFiles::Algorithm(process);
    step.round = RoundOf(node);
    const StepFiles files(process);
    step.parameters = files.Parameters();
    step.outputs = files.Outputs();
    if (auto* algo = dynamic_cast<Plugin::APCAlgo*>(process))
        step.executionText = algo->ExecutionText();
    step.start = QDateTime::currentDateTimeUtc();
    m_steps.push_back(step);
    const int index = int(m_steps.size()) - 1;
    m_open.insert(process, index);
    return index;
}

void RunRecorder::OnStatus(SequenceNode* node, int status)
{
    if (status != SequenceNode::Running || !node || isIterator(node))
        return;
    // A node started again before its last run reported: that run is not heard of again.
    if (m_open.contains(node->GetProcess()))
        End(m_open.take(node->GetProcess()), Status::Unfinished);
    Open(node);
}

void RunRecorder::StartRound(SequenceNode* iterator)
{
    Round round;
    round.index = int(m_rounds.size()) + 1;
    round.iterator = iterator->GetProcess()->GetDescription();
    round.files = StepFiles(iterator->GetProcess()).OutputParameters();
    // The first output in name order drives the pairing of the others.
    auto first = std::min_element(round.files.begin(), round.files.end(),
                                  [](const QPair<QString, QString>& a, const QPair<QString, QString>& b) { return a.first < b.first; });
    if (first != round.files.end())
        round.file = first->second;
    m_rounds.push_back(round);
    m_iteratorRound.insert(iterator, round.index);
    ++m_iteratorRounds[iterator];
}

void RunRecorder::OnStepEnded(SequenceNode* node, const Plugin::APCLogRecord& record)
{
    APCProcess* process = node->GetProcess();
    if (isIterator(node)) {
        if (record.errorCode == 0) {
            if (auto* files = dynamic_cast<Plugin::APCFileIterator*>(process))
                m_leftOut.Note(files);
            StartRound(node);
            return;
        }
        Open(node); // an iterator that cannot hand out its files fails like a step
    }
    const int index = m_open.contains(process) ? m_open.take(process) : -1;
    if (index < 0)
        return; // started before the recorder was attached
    Step& step = m_steps[size_t(index)];
    step.errorCode = record.errorCode;
    step.errorMessage = record.errorMessage;
    if (record.errorCode == 0)
        for (const QString& out : step.outputs)
            if (QFileInfo::exists(out))
                step.written.append(out);
    End(index, record.errorCode == 0 ? Status::Succeeded : Status::Failed);
}

void RunRecorder::MarkSkipped(APCProcess* clone)
{
    if (m_open.contains(clone))
        End(m_open.take(clone), Status::Skipped);
}

void RunRecorder::CloseOpenSteps(Status status)
{
    QList<int> open = m_open.values();
    std::sort(open.begin(), open.end());
    m_open.clear();
    for (int index : open)
        End(index, status);
}

void RunRecorder::End(int index, Status status)
{
    Step& step = m_steps[size_t(index)];
    step.status = status;
    step.end = QDateTime::currentDateTimeUtc();
    if (step.round > 0) {
        Round& round = m_rounds[size_t(step.round - 1)];
        round.failed = round.failed || status == Status::Failed;
        round.interrupted = round.interrupted || status == Status::Interrupted;
    }
    if (onStepEnded)
        onStepEnded(step);
}

QList<SequenceNode*> RunRecorder::EmptyIterators() const
{
    QList<SequenceNode*> empty;
    for (SequenceNode* node : m_control.GetNodes()) {
        auto* iterator = dynamic_cast<Plugin::APCFileIterator*>(node->GetProcess());
        if (iterator && iterator->IsEnded() && m_iteratorRounds.value(node) == 0)
            empty.append(node);
    }
    return empty;
}

} // namespace Mbrun
