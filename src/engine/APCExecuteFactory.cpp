#include "engine/APCExecuteFactory.h"

#include "model/IAPCExecute.h"

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>
#include <boost/bind/bind.hpp>

namespace Plugin {

APCExecuteFactory* APCExecuteFactory::Instance()
{
    static APCExecuteFactory instance;
    return &instance;
}

APCExecuteFactory::~APCExecuteFactory()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    qDeleteAll(m_watchers);
}

bool APCExecuteFactory::Execute(IAPCExecute* executable)
{
    return executable ? executable->Execute() : false;
}

void APCExecuteFactory::Start(IAPCExecute* executable)
{
    if (!executable)
        return;
    auto* watcher = new QFutureWatcher<bool>;
    QObject::connect(watcher, &QFutureWatcher<bool>::finished, watcher, [this, executable] { OnFinished(executable); });
    QObject::connect(watcher, &QFutureWatcher<bool>::canceled, watcher, [this, executable] { OnCanceled(executable); });
    std::lock_guard<std::mutex> lock(m_mutex);
    SweepLocked();
    m_executables.append(executable);
    m_watchers.append(watcher);
    // Under the lock: the pool thread takes it first, so what the caller wrote
    // before Start is visible to Execute.
    const QFuture<bool> future = QtConcurrent::run(QThreadPool::globalInstance(),
                                                   boost::bind(&APCExecuteFactory::RunOnPool, this, executable));
    m_tasks[executable].append(future);
    watcher->setFuture(future);
}

bool APCExecuteFactory::RunOnPool(IAPCExecute* executable)
{
    { std::lock_guard<std::mutex> lock(m_mutex); }
    const bool result = executable->Execute();
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
            if (futures[i].isFinished())
                futures.removeAt(i);
        it = futures.isEmpty() ? m_tasks.erase(it) : std::next(it);
    }
    for (auto it = m_orphans.begin(); it != m_orphans.end();) {
        if (it.value().isFinished()) {
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
        if (!f.isFinished())
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
        watcher->waitForFinished();
        (void)watcher->result();
        lock.lock();
        const int again = m_executables.indexOf(executable);
        if (again >= 0) {
            m_executables.removeAt(again);
            m_watchers.removeAt(again);
        }
        lock.unlock();
        delete watcher;
    }
    executable->Finished(executable);
}

void APCExecuteFactory::OnCanceled(IAPCExecute* executable)
{
    if (QFutureWatcher<bool>* watcher = Detach(executable)) {
        watcher->disconnect();
        delete watcher;
    }
    executable->Canceled(executable);
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
        watcher->waitForFinished();
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
    for (QFuture<bool>& f : futures)
        f.waitForFinished();
}

} // namespace Plugin
