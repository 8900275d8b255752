#pragma once

#include <QList>
#include <QStack>
#include <QString>
#include <boost/signals2.hpp>

#include <functional>
#include <memory>
#include <vector>

class QObject;
class QThread;

namespace Plugin {

class APCLog;
class APCModel;
class APCProcess;
class SequenceNode;
struct APCLogRecord;

// Runs one model: builds a graph of nodes from its processes and arrows, starts
// every node whose inputs are complete, repeats the part behind an iterator, and
// reports through three signals and a log. All of its logic runs on the thread
// that called Start(), which must run an event loop.
class SequenceControl
{
public:
    enum State { Idle = 0, Running = 1, Paused = 2 };

    SequenceControl();
    SequenceControl(const SequenceControl&) = delete;
    SequenceControl& operator=(const SequenceControl&) = delete;
    ~SequenceControl();

    // Takes ownership of log; null is ignored.
    void SetLog(APCLog* log);
    void SetName(const QString& name);
    // Rebuilds the graph from model (not owned). A bad graph leaves nothing to
    // start, and GetBuildError() says why.
    void Build(APCModel* model);
    // Why the last Build found the graph not runnable (a var written by two steps,
    // an arrow to a missing object); empty when it can run.
    QString GetBuildError() const { return m_buildError; }
    // Starts a run, or continues a paused one.
    void Start();
    void Pause();
    // Stops waiting for every step and finishes the run.
    void Stop();
    int GetState() const { return m_state; }
    // The run's error: the first failed step's, else what the last node reported.
    void GetError(int& code, QString& message);
    // Asked on the control's thread, with the node's clone, before each step other
    // than an iterator starts: true skips the step. A skipped step is logged as
    // skipped and counts as done for the graph, so the steps behind it run. An
    // empty filter, the default, skips nothing and changes nothing in the run.
    void SetStepFilter(std::function<bool(APCProcess* clone)> filter);

    APCLog* GetLog() const { return m_log; }
    APCModel* GetModel() const { return m_model; }
    QString GetName() const { return m_name; }
    const QList<SequenceNode*>& GetNodes() const { return m_nodes; }

    // A step reported progress (0..100); emitted on the step's pool thread.
    boost::signals2::signal<void(SequenceNode*, double)> NodeProgress;
    // A node's status changed; emitted on the control's thread.
    boost::signals2::signal<void(SequenceNode*, int)> NodeStatus;
    // A node finished well; null once when the whole run ended. Control's thread.
    boost::signals2::signal<void(SequenceNode*)> NodeFinished;
    // A step ended and its block was just logged: once per execution (each round of
    // an iterator, not its end), on the control's thread, before the run moves on.
    boost::signals2::signal<void(SequenceNode*, const APCLogRecord&)> StepEnded;

    // Internal to the run: called by the nodes.
    void RunNode(SequenceNode* node);
    void SetNodeStatus(SequenceNode* node, int status);
    void NodeExecuteFinished(SequenceNode* node);
    void OnEndNodeFinished(SequenceNode* node);
    // True when the filter skips node's step; its end then follows through the
    // event loop, as a real step's does.
    bool SkipStep(SequenceNode* node);

private:
    void NodeSkipped(SequenceNode* node);
    void ContinueOrFinish();
    void ResetSubtree(SequenceNode* node, int status);
    void Finish();
    void DeleteNodes();
    // True on the thread that started the run (or before any run).
    bool OnRunThread() const;
    // Stops the nested runs that steps of this run are waiting in.
    void StopNestedRuns();

    QStack<SequenceNode*> m_iterators;
    QList<SequenceNode*> m_nodes; // owned
    QList<SequenceNode*> m_pending;
    APCLog* m_log = nullptr; // owned
    QString m_name;
    QString m_buildError;
    QThread* m_thread = nullptr; // the thread that called Start
    std::function<bool(APCProcess*)> m_stepFilter;
    std::unique_ptr<QObject> m_context; // on the run's thread: where skipped steps end
    quint64 m_generation = 0;           // a new build or a stop: ends of skips still queued are dropped
    APCModel* m_model = nullptr;
    int m_state = Idle;
    int m_endCount = 0;
    int m_endReached = 0;
};

} // namespace Plugin
