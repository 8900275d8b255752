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
    {
        // The lock also orders what the caller wrote before Start ahead of the
        // pool thread's reads (it takes the same lock first).
        std::lock_guard<std::mutex> lock(m_mutex);
        m_executables.append(executable);
        m_watchers.append(watcher);
        ++m_busy[executable];
    }
    watcher->setFuture(QtConcurrent::run(QThreadPool::globalInstance(),
                                         boost::bind(&APCExecuteFactory::RunOnPool, this, executable)));
}

bool APCExecuteFactory::RunOnPool(IAPCExecute* executable)
{
    { std::lock_guard<std::mutex> lock(m_mutex); }
    const bool result = executable->Execute();
    bool orphaned = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (--m_busy[executable] <= 0) {
            m_busy.remove(executable);
            orphaned = m_orphans.remove(executable);
        }
    }
    m_idle.notify_all();
    if (orphaned)
        delete executable;
    return result;
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
        if (m_busy.contains(executable)) {
            m_orphans.insert(executable);
            return;
        }
    }
    delete executable;
}

} // namespace Plugin

namespace Plugin {

void APCExecuteFactory::WaitUntilIdle(const QList<IAPCExecute*>& executables)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_idle.wait(lock, [&] {
        for (IAPCExecute* e : executables)
            if (m_busy.contains(e))
                return false;
        return true;
    });
}

} // namespace Plugin
