#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <boost/signals2/connection.hpp>

#include <atomic>

namespace Plugin {

class APCModel;
class APCVar;
class SequenceControl;

// Where stop requests for a run are delivered, on the run's own thread. RequestStop
// calls its slot by name: the request's event is then made and read inside Qt, whose
// queue lock orders it. A lambda made on one thread and run on the other would be
// ordered just the same, but by a lock the thread checker cannot see.
class RunStopper : public QObject
{
    Q_OBJECT
public:
    explicit RunStopper(SequenceControl& control) : m_control(control) {}

public slots:
    void Stop();

private:
    SequenceControl& m_control;
};

// Prepares a model and runs it on a control, the one way the Run command, mbrun,
// the nested step, the headless objects and the tests all do it: reset the var
// values, resolve them with the inputs, name the run, build, start; Wait() then
// spins a local event loop until the run has finished. Lives on the thread that
// starts the run; neither control nor model is owned.
class ModelRun
{
public:
    ModelRun(SequenceControl& control, APCModel& model);
    ModelRun(const ModelRun&) = delete;
    ModelRun& operator=(const ModelRun&) = delete;
    ~ModelRun();

    // inputs are free-var clones carrying the values (matched by id); they stay
    // the caller's. False, with nothing started, when the graph cannot run: the
    // reason is the control's GetBuildError().
    bool Start(const QList<APCVar*>& inputs, const QString& name);
    // Everything Start does short of starting: for a graph that is only walked,
    // as a plan does. False when the graph cannot run (see GetBuildError()).
    static bool Prepare(SequenceControl& control, APCModel& model, const QList<APCVar*>& inputs, const QString& name);
    // Blocks until the run finished (true) or timeoutMs passed (false; -1 waits
    // for ever). Returns at once when the run already finished.
    bool Wait(int timeoutMs = -1);
    // Asks the run to stop as the Stop command does. Safe from any thread: the
    // stop is carried out on the run's own thread, also before Wait() began.
    void RequestStop();
    bool Finished() const { return m_finished; }

private:
    SequenceControl& m_control;
    APCModel& m_model;
    RunStopper m_context; // on the run's thread
    std::atomic<bool> m_finished{false};
    boost::signals2::scoped_connection m_finishConnection;
};

} // namespace Plugin
