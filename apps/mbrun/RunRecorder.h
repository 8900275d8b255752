#pragma once

#include "LeftOutFiles.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <boost/signals2/connection.hpp>

#include <functional>
#include <vector>

namespace Plugin {
class APCProcess;
class SequenceControl;
class SequenceNode;
struct APCLogRecord;
} // namespace Plugin

namespace Mbrun {

// What a run did, step by step and round by round, gathered from the control's
// signals on the run's thread: the material of the report, the resume state and
// the closing lines. Attach it before the run starts.
class RunRecorder
{
public:
    enum class Status { Running, Succeeded, Failed, Skipped, Interrupted, Unfinished };

    // One set of files an iterator handed out.
    struct Round
    {
        int index = 0;    // 1, 2, ... over the whole run
        QString iterator; // the iterator's description
        QString file;     // the driving file: its first output's, in name order
        QList<QPair<QString, QString>> files; // output name -> file
        bool failed = false;      // a step of the round failed
        bool interrupted = false; // a step of the round was running when the run stopped
    };

    // One execution of a step; a failed iterator counts as a step too.
    struct Step
    {
        QString id;
        QString description;
        QString algorithm;      // the algorithm's name, or the process's class
        int round = 0;          // Round::index, 0 outside any round
        QList<QPair<QString, QString>> parameters; // name -> value as the step saw it
        QStringList outputs;    // the output names it was given
        QStringList written;    // those that existed when it succeeded
        QString executionText;  // what an algorithm step was sent; empty for others
        QDateTime start;
        QDateTime end;          // null while running
        Status status = Status::Running;
        int errorCode = 0;
        QString errorMessage;
    };

    explicit RunRecorder(Plugin::SequenceControl& control);
    RunRecorder(const RunRecorder&) = delete;
    RunRecorder& operator=(const RunRecorder&) = delete;
    ~RunRecorder();

    // The step clone belongs to has just started and is skipped: it ends here.
    void MarkSkipped(Plugin::APCProcess* clone);
    // Ends every step still running with status (Interrupted or Unfinished).
    void CloseOpenSteps(Status status);

    const std::vector<Step>& Steps() const { return m_steps; }
    const std::vector<Round>& Rounds() const { return m_rounds; }
    int Count(Status status) const;
    // The descriptions of the steps that started and have not ended, in start order.
    QStringList RunningSteps() const;
    // The file iterators of the run that ended without handing out a round.
    QList<Plugin::SequenceNode*> EmptyIterators() const;
    // The files of the iterators' folders that no round used.
    const LeftOutFiles& LeftOut() const { return m_leftOut; }
    static QString StatusText(Status status);

    // Called on the run's thread as each step ends, skipped steps included.
    std::function<void(const Step&)> onStepEnded;

private:
    void OnStatus(Plugin::SequenceNode* node, int status);
    void OnStepEnded(Plugin::SequenceNode* node, const Plugin::APCLogRecord& record);
    void StartRound(Plugin::SequenceNode* iterator);
    // Records node's step as started now; returns its index.
    int Open(Plugin::SequenceNode* node);
    void End(int index, Status status);
    // The latest round among the iterators node stands behind; 0 for none.
    int RoundOf(Plugin::SequenceNode* node);
    // Which iterators each node of the current build stands behind.
    void MapIterators();

    Plugin::SequenceControl& m_control;
    std::vector<Step> m_steps;
    std::vector<Round> m_rounds;
    QHash<Plugin::APCProcess*, int> m_open;                // clone -> index of its running step
    QHash<Plugin::SequenceNode*, int> m_iteratorRound;     // iterator -> its current round
    QHash<Plugin::SequenceNode*, int> m_iteratorRounds;    // iterator -> rounds handed out
    QHash<Plugin::SequenceNode*, QList<Plugin::SequenceNode*>> m_behind; // node -> its iterators
    LeftOutFiles m_leftOut;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

} // namespace Mbrun
