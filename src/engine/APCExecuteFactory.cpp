#include "engine/APCExecuteFactory.h"

#include "model/IAPCExecute.h"

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QThread>
#include <QThreadPool>
#include <boost/bind/bind.hpp>
#include <boost/function.hpp>

namespace Plugin {

namespace {

// Enough for every step the pool can run side by side; more would only hold memory.
constexpr int kMaxSpareWatchers = 64;

// Bumped by the starting thread once a task is built and by the task once its
// work is done; each side reads it before touching what the other wrote.
// The pool's own hand-over gives the same order, but through locks that the
// thread checker cannot see.
std::atomic<unsigned> g_handoffs{0};

// Whoever sees a task end may then touch, or delete, what it wrote: these two are
// how the starting side sees an end, so they read the hand-over.
bool hasEnded(const QFuture<bool>& future)
{
    if (!future.isFinished())
        return false;
    (void)g_handoffs.load(std::memory_order_acquire);
    return true;
}

void waitForEnd(QFuture<bool> future)
{
    future.waitForFinished();
    (void)g_handoffs.load(std::memory_order_acquire);
}

// One pool task with a bool future, as a concurrent run would give, except that
// it reports its end in one event instead of three (progress, result, finish):
// every event wakes the starting thread, and those wake-ups were most of a short
// step's cost. Waiting for a task not yet started runs it on the waiting thread,
// as with a concurrent run. The future holds no result: the step's outcome is in
// the executable, and a stored one would be a heap value that either thread may
// read or free, ordered only by the future's own lock, which the checker cannot see.
class PoolTask : public QFutureInterface<bool>, public QRunnable
{
public:
    explicit PoolTask(boost::function<bool()> work) : m_work(std::move(work)) {}

    QFuture<bool> Start(QThreadPool* pool)
    {
        setThreadPool(pool);
        setRunnable(this);
        reportStarted();
        QFuture<bool> future = this->future();
        pool->start(this);
        return future;
    }

    void run() override
    {
        (void)g_handoffs.load(std::memory_order_acquire);
        if (isCanceled()) {
            reportFinished();
            return;
        }
        m_work();
        g_handoffs.fetch_add(1, std::memory_order_release);
        reportFinished();
    }

private:
    boost::function<bool()> m_work;
};

} // namespace

APCExecuteFactory* APCExecuteFactory::Instance()
{
    static APCExecuteFactory instance;
    return &instance;
}

APCExecuteFactory::~APCExecuteFactory()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    qDeleteAll(m_watchers);
    qDeleteAll(m_spareWatchers);
}

bool APCExecuteFactory::Execute(IAPCExecute* executable)
{
    return executable ? executable->Execute() : false;
}

void APCExecuteFactory::Start(IAPCExecute* executable)
{
    if (!executable)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    SweepLocked();
    m_executables.append(executable);
    QFutureWatcher<bool>* watcher = TakeWatcherLocked();
    QObject::connect(watcher, &QFutureWatcher<bool>::finished, watcher, [this, executable] { OnFinished(executable); });
    QObject::connect(watcher, &QFutureWatcher<bool>::canceled, watcher, [this, executable] { OnCanceled(executable); });
    m_watchers.append(watcher);
    auto* task = new PoolTask(boost::bind(&APCExecuteFactory::RunOnPool, this, executable));
    g_handoffs.fetch_add(1, std::memory_order_release);
    const QFuture<bool> future = task->Start(QThreadPool::globalInstance());
    m_tasks[executable].append(future);
    watcher->setFuture(future);
}

bool APCExecuteFactory::RunOnPool(IAPCExecute* executable)
{
    bool result = false;
    try {
        result = executable->Execute();
    } catch (const std::exception& e) {
        executable->SetError(-1, QString::fromLocal8Bit(e.what()));
    } catch (...) {
        // An exception must not cross into the pool: it would end the program.
        executable->SetError(-1, QStringLiteral("Unexpected exception"));
    }
    bool orphaned = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        orphaned = m_orphans.remove(executable) > 0;
    }
    if (orphaned)
        delete executable;
    return result;
}

void APCExecuteFactory::SweepLocked()
{
    for (auto it = m_tasks.begin(); it != m_tasks.end();) {
        QList<QFuture<bool>>& futures = it.value();
        for (int i = futures.size() - 1; i >= 0; --i)
            if (hasEnded(futures[i]))
                futures.removeAt(i);
        it = futures.isEmpty() ? m_tasks.erase(it) : std::next(it);
    }
    for (auto it = m_orphans.begin(); it != m_orphans.end();) {
        if (hasEnded(it.value())) {
            delete it.key();
            it = m_orphans.erase(it);
        } else {
            ++it;
        }
    }
}

bool APCExecuteFactory::BusyLocked(IAPCExecute* executable)
{
    auto it = m_tasks.constFind(executable);
    if (it == m_tasks.constEnd())
        return false;
    for (const QFuture<bool>& f : it.value())
        if (!hasEnded(f))
            return true;
    return false;
}

QFutureWatcher<bool>* APCExecuteFactory::Detach(IAPCExecute* executable)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const int index = m_executables.indexOf(executable);
    if (index < 0)
        return nullptr;
    QFutureWatcher<bool>* watcher = m_watchers.at(index);
    m_executables.removeAt(index);
    m_watchers.removeAt(index);
    return watcher;
}

void APCExecuteFactory::OnFinished(IAPCExecute* executable)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const int index = m_executables.indexOf(executable);
    QFutureWatcher<bool>* watcher = index >= 0 ? m_watchers.at(index) : nullptr;
    lock.unlock();
    if (watcher) {
        watcher->disconnect();
        waitForEnd(watcher->future());
        lock.lock();
        const int again = m_executables.indexOf(executable);
        if (again >= 0) {
            m_executables.removeAt(again);
            m_watchers.removeAt(again);
        }
        lock.unlock();
        RecycleWatcher(watcher);
    }
    executable->Finished(executable);
}

void APCExecuteFactory::OnCanceled(IAPCExecute* executable)
{
    if (QFutureWatcher<bool>* watcher = Detach(executable)) {
        watcher->disconnect();
        delete watcher; // its task may still run and report: never reused
    }
    executable->Canceled(executable);
}

QFutureWatcher<bool>* APCExecuteFactory::TakeWatcherLocked()
{
    const QCoreApplication* app = QCoreApplication::instance();
    if (app && QThread::currentThread() == app->thread() && !m_spareWatchers.isEmpty())
        return m_spareWatchers.takeLast();
    return new QFutureWatcher<bool>;
}

void APCExecuteFactory::RecycleWatcher(QFutureWatcher<bool>* watcher)
{
    // Only watchers of the application thread are kept: a pool thread may end,
    // and a watcher of a finished thread would never report again. A report
    // still queued from the old future (a cancel that raced the finish) is
    // dropped by the next setFuture, before the next step is connected.
    const QCoreApplication* app = QCoreApplication::instance();
    if (app && watcher->thread() == app->thread() && QThread::currentThread() == app->thread()) {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_spareWatchers.size() < kMaxSpareWatchers) {
            m_spareWatchers.append(watcher);
            return;
        }
    }
    delete watcher;
}

bool APCExecuteFactory::IsRunning()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return !m_executables.isEmpty();
}

void APCExecuteFactory::Cancel(IAPCExecute* executable)
{
    if (!executable)
        return;
    QFutureWatcher<bool>* watcher = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const int index = m_executables.indexOf(executable);
        if (index >= 0)
            watcher = m_watchers.at(index);
    }
    executable->Cancel();
    if (watcher) {
        watcher->cancel();
        waitForEnd(watcher->future());
    }
}

void APCExecuteFactory::CancelAll()
{
    // Under the lock: a watcher is deleted only after it left the lists. A cancel
    // request is thread-safe and its report arrives on the watcher's own thread.
    std::lock_guard<std::mutex> lock(m_mutex);
    for (int i = 0; i < m_executables.size(); ++i) {
        m_executables[i]->Cancel();
        m_watchers[i]->cancel();
    }
}

void APCExecuteFactory::Dispose(IAPCExecute* executable)
{
    if (!executable)
        return;
    // Called on the thread that started it: its watcher, with any report still
    // queued, goes first, so nothing reports on a deleted object.
    while (QFutureWatcher<bool>* watcher = Detach(executable)) {
        watcher->disconnect();
        delete watcher;
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        SweepLocked();
        if (BusyLocked(executable)) {
            m_orphans.insert(executable, m_tasks.value(executable).last());
            return;
        }
        m_tasks.remove(executable);
    }
    delete executable;
}

void APCExecuteFactory::WaitUntilIdle(const QList<IAPCExecute*>& executables)
{
    QList<QFuture<bool>> futures;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (IAPCExecute* e : executables)
            futures += m_tasks.value(e);
    }
    // A task cancelled before it started is finished here without running.
    for (const QFuture<bool>& f : futures)
        waitForEnd(f);
}

} // namespace Plugin
