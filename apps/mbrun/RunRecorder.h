#pragma once

#include "LeftOutFiles.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <boost/signals2/connection.hpp>

#include <array>
#include <functional>
#include <map>
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
// the closing lines. Attach it before the run starts. Each step and round is handed
// on as it ends and then forgotten, so memory follows what is running, not how
// much has run.
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
        std::map<int, QString> failedSteps; // Step::order -> description of each failed step
        int running = 0;          // its steps that have started and not ended
        bool superseded = false;  // its iterator has handed out another round since
    };

    // One execution of a step; a failed iterator counts as a step too.
    struct Step
    {
        int order = 0;          // 0, 1, ... in start order over the whole run
        QString id;
        QString description;
        QString algorithm;      // the algorithm's name, or the process's class
        int round = 0;          // Round::index, 0 outside any round
        QList<QPair<QString, QString>> parameters; // name -> value as the step saw it
        QStringList outputs;    // the output names it was given
        QStringList written;    // those it left on the disk
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

    // Numbers the rounds from first on (a run of one round of a batch keeps the
    // batch's number); 1 unless set.
    void SetFirstRound(int first) { m_firstRound = first; }
    // The step clone belongs to has just started and is skipped: it ends here.
    void MarkSkipped(Plugin::APCProcess* clone);
    // Ends every step still running with status (Interrupted or Unfinished), then
    // every round: the run is over.
    void CloseOpenSteps(Status status);

    // How many steps started, and how many ended with status.
    int StepCount() const { return m_stepCount; }
    int Count(Status status) const { return m_counts[size_t(status)]; }
    int RoundCount() const { return m_roundCount; }
    // The driving files of the rounds that failed, and of those a stop
    // interrupted, in round order, once the rounds have ended.
    QStringList FailedRoundFiles() const;
    QStringList InterruptedRoundFiles() const;
    // The descriptions of the steps outside any round that failed, quoted.
    const QStringList& FailedOutsideRounds() const { return m_failedOutside; }
    // The descriptions of the steps that started and have not ended, in start order.
    QStringList RunningSteps() const;
    // The file iterators of the run that ended without handing out a round.
    QList<Plugin::SequenceNode*> EmptyIterators() const;
    // The files of the iterators' folders that no round used.
    const LeftOutFiles& LeftOut() const { return m_leftOut; }
    static QString StatusText(Status status);

    // Called on the run's thread as each step ends, skipped steps included.
    std::function<void(const Step&)> onStepEnded;
    // Called on the run's thread as each round ends: once it has no step running
    // and its iterator has moved on, or the run is over.
    std::function<void(const Round&)> onRoundEnded;

private:
    void OnStatus(Plugin::SequenceNode* node, int status);
    void OnStepEnded(Plugin::SequenceNode* node, const Plugin::APCLogRecord& record);
    void StartRound(Plugin::SequenceNode* iterator);
    // Records node's step as started now; returns its order.
    int Open(Plugin::SequenceNode* node);
    void End(int order, Status status);
    // Hands the round on and forgets it when it has ended.
    void EndRoundIfDone(int index);
    // The latest round among the iterators node stands behind; 0 for none.
    int RoundOf(Plugin::SequenceNode* node);
    // Which iterators each node of the current build stands behind.
    void MapIterators();

    Plugin::SequenceControl& m_control;
    std::map<int, Step> m_running;                         // order -> step, while it runs
    std::map<int, Round> m_rounds;                         // index -> round, until it ends
    QHash<Plugin::APCProcess*, int> m_open;                // clone -> order of its running step
    QHash<Plugin::SequenceNode*, int> m_iteratorRound;     // iterator -> its current round
    QHash<Plugin::SequenceNode*, int> m_iteratorRounds;    // iterator -> rounds handed out
    QHash<Plugin::SequenceNode*, QList<Plugin::SequenceNode*>> m_behind; // node -> its iterators
    LeftOutFiles m_leftOut;
    int m_stepCount = 0;
    int m_roundCount = 0;
    int m_firstRound = 1;
    std::array<int, 6> m_counts{}; // by Status
    std::map<int, QString> m_failedRoundFiles;      // round -> its driving file
    std::map<int, QString> m_interruptedRoundFiles; // round -> its driving file
    QStringList m_failedOutside;
    std::vector<boost::signals2::scoped_connection> m_connections;
};

} // namespace Mbrun
