#include "RunRecorder.h"

#include "StepFiles.h"

#include "engine/APCAlgo.h"
#include "engine/APCFileIterator.h"
#include "engine/APCIterator.h"
#include "engine/APCLogRecord.h"
#include "engine/RunPlan.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "engine/StepGraph.h"
#include "model/SoftAssert.h"

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

namespace {

QStringList filesOf(const std::map<int, QString>& rounds)
{
    QStringList files;
    for (const auto& round : rounds)
        files << round.second;
    return files;
}

} // namespace

QStringList RunRecorder::FailedRoundFiles() const
{
    return filesOf(m_failedRoundFiles);
}

QStringList RunRecorder::InterruptedRoundFiles() const
{
    return filesOf(m_interruptedRoundFiles);
}

QStringList RunRecorder::RunningSteps() const
{
    QList<int> open = m_open.values();
    std::sort(open.begin(), open.end());
    QStringList names;
    for (int order : open)
        names << QLatin1Char('"') + m_running.at(order).description + QLatin1Char('"');
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
            for (SequenceNode* n : Plugin::StepGraph::Behind(iterator))
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
    step.order = m_stepCount++;
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
    auto round = m_rounds.find(step.round);
    if (round != m_rounds.end())
        ++round->second.running;
    const int order = step.order;
    m_running.emplace(order, std::move(step));
    m_open.insert(process, order);
    return order;
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
    round.index = m_firstRound + m_roundCount++;
    round.iterator = iterator->GetProcess()->GetDescription();
    round.files = StepFiles(iterator->GetProcess()).OutputParameters();
    round.file = Plugin::RunPlan::DrivingFile(round.files);
    const int previous = m_iteratorRound.value(iterator);
    const int index = round.index;
    m_rounds.emplace(index, std::move(round));
    m_iteratorRound.insert(iterator, index);
    ++m_iteratorRounds[iterator];
    auto last = m_rounds.find(previous);
    if (last != m_rounds.end()) {
        last->second.superseded = true;
        EndRoundIfDone(previous);
    }
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
    const int order = m_open.contains(process) ? m_open.take(process) : -1;
    if (order < 0)
        return; // started before the recorder was attached
    Step& step = m_running.at(order);
    step.errorCode = record.errorCode;
    step.errorMessage = record.errorMessage;
    if (record.errorCode == 0)
        for (const QString& out : step.outputs)
            if (QFileInfo::exists(out))
                step.written.append(out);
    End(order, record.errorCode == 0 ? Status::Succeeded : Status::Failed);
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
    for (int order : open)
        End(order, status);
    QList<int> rounds;
    for (auto& [index, round] : m_rounds) {
        round.superseded = true;
        rounds << index;
    }
    for (int index : rounds)
        EndRoundIfDone(index);
}

void RunRecorder::End(int order, Status status)
{
    auto it = m_running.find(order);
    MB_ASSERT(it != m_running.end(), return);
    Step& step = it->second;
    step.status = status;
    step.end = QDateTime::currentDateTimeUtc();
    if (status == Status::Interrupted || status == Status::Unfinished) {
        // An output may have been published just before the stop, its step never
        // heard of again: what is on the disk, written since the step started,
        // counts. The margin covers file systems that keep coarse times.
        const QDateTime since = step.start.addSecs(-2);
        for (const QString& out : step.outputs) {
            const QFileInfo info(out);
            if (info.isFile() && info.lastModified() >= since)
                step.written.append(out);
        }
    }
    ++m_counts[size_t(status)];
    if (step.round == 0 && status == Status::Failed)
        m_failedOutside << QLatin1Char('"') + step.description + QLatin1Char('"');
    const int roundIndex = step.round;
    auto round = m_rounds.find(roundIndex);
    if (round != m_rounds.end()) {
        Round& r = round->second;
        r.failed = r.failed || status == Status::Failed;
        r.interrupted = r.interrupted || status == Status::Interrupted;
        if (status == Status::Failed)
            r.failedSteps.emplace(step.order, step.description);
        --r.running;
    }
    if (onStepEnded)
        onStepEnded(step);
    m_running.erase(it);
    EndRoundIfDone(roundIndex);
}

void RunRecorder::EndRoundIfDone(int index)
{
    auto it = m_rounds.find(index);
    if (it == m_rounds.end() || !it->second.superseded || it->second.running > 0)
        return;
    const Round& round = it->second;
    if (round.failed)
        m_failedRoundFiles.emplace(round.index, round.file);
    if (round.interrupted)
        m_interruptedRoundFiles.emplace(round.index, round.file);
    if (onRoundEnded)
        onRoundEnded(round);
    m_rounds.erase(it);
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
