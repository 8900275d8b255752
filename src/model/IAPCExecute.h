#pragma once

#include <QString>
#include <boost/signals2.hpp>

#include <mutex>

namespace Plugin {

// The executable face of a step: a result, an error, progress and completion.
class IAPCExecute
{
public:
    using ProgressSignal = boost::signals2::signal<int(double, const QString&, void*),
                                                   boost::signals2::optional_last_value<int>>;
    using DoneSignal = boost::signals2::signal<void(void*)>;

    IAPCExecute() = default;
    IAPCExecute(const IAPCExecute&) = delete;
    IAPCExecute& operator=(const IAPCExecute&) = delete;
    virtual ~IAPCExecute() = default;

    virtual void GetError(int& code, QString& message);
    virtual void SetError(int code, const QString& message);
    virtual bool IsSucceeded();
    virtual QString GetDescription();
    // Does the work; runs on a pool thread. The base does nothing and fails.
    virtual bool Execute();
    // Kept for the interface; no step can be interrupted.
    virtual void Cancel();

    // Percentage 0..100, a text, a user pointer. Emitted on the thread running Execute().
    ProgressSignal Progress;
    // The step's thread is done; emitted once per run of the step, on the starting thread.
    DoneSignal Finished;
    // The step's watcher was cancelled; emitted on the starting thread.
    DoneSignal Canceled;

protected:
    void SetSucceeded(bool succeeded);

private:
    // Steps write their error on a pool thread and the control reads it on its own.
    mutable std::mutex m_errorMutex;
    int m_errorCode = 0;
    bool m_succeeded = true;
    QString m_errorMessage;
};

} // namespace Plugin
