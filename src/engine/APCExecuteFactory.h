#pragma once

#include <QList>
#include <QHash>
#include <QFuture>
#include <QSet>

#include <mutex>

template <typename T>
class QFutureWatcher;

namespace Plugin {

class IAPCExecute;

// The one place where an executable meets a thread: Execute runs on the global
// pool, and its end is reported as the executable's Finished (or Canceled) on the
// thread that called Start, through that thread's event loop.
class APCExecuteFactory
{
public:
    static APCExecuteFactory* Instance();
    virtual ~APCExecuteFactory();

    // Runs executable at once on the calling thread; false for null.
    virtual bool Execute(IAPCExecute* executable);
    // Starts executable on the pool; null is ignored. The caller must run an event loop.
    virtual void Start(IAPCExecute* executable);
    virtual bool IsRunning();
    // Cancels one executable's watcher and waits for its thread.
    virtual void Cancel(IAPCExecute* executable);
    // Cancels every watcher; running threads go on unheard.
    virtual void CancelAll();

    // Deletes executable now, or when its pool thread is done with it. Owners use
    // this instead of delete so that a stopped step never loses its object mid-run.
    void Dispose(IAPCExecute* executable);
    // Blocks until none of executables is inside Execute on the pool any more.
    void WaitUntilIdle(const QList<IAPCExecute*>& executables);

private:
    APCExecuteFactory() = default;

    bool RunOnPool(IAPCExecute* executable);
    void OnFinished(IAPCExecute* executable);
    void OnCanceled(IAPCExecute* executable);
    // Takes the entries of executable out of the lists; returns its watcher or null.
    QFutureWatcher<bool>* Detach(IAPCExecute* executable);
    // A watcher for the calling thread: a spare one on the application thread,
    // else a new one. Building a watcher costs system calls, and the editor and
    // mbrun start every step from that thread.
    QFutureWatcher<bool>* TakeWatcherLocked();
    // Keeps the watcher of a finished task for reuse, or deletes it.
    void RecycleWatcher(QFutureWatcher<bool>* watcher);


    std::mutex m_mutex; // guards every field below

    QList<IAPCExecute*> m_executables;          // not owned
    QList<QFutureWatcher<bool>*> m_watchers;    // owned
    // The pool tasks of each executable that may not have ended yet. A task whose
    // watcher was cancelled before it started never calls Execute, so "busy" is
    // judged by the future, not by our own counting.
    QHash<IAPCExecute*, QList<QFuture<bool>>> m_tasks;
    QHash<IAPCExecute*, QFuture<bool>> m_orphans; // disposed while busy; deleted when done
    QList<QFutureWatcher<bool>*> m_spareWatchers; // owned; all on the application thread
    void SweepLocked(); // drops ended tasks and deletes orphans whose task ended unheard
    bool BusyLocked(IAPCExecute* executable);
};

} // namespace Plugin
