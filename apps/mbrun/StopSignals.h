#pragma once

#include <QString>

#include <functional>
#include <memory>

class QSocketNotifier;

namespace Mbrun {

// Turns SIGINT, SIGTERM and SIGHUP into a call on the thread that made this object,
// served by its event loop: the handler only writes the signal's number into a
// pipe, the one thing it may safely do. One instance at a time; the default
// handlers come back when it dies.
class StopSignals
{
public:
    // onSignal gets the number of each signal as it arrives.
    explicit StopSignals(std::function<void(int)> onSignal);
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    ~StopSignals();

    // "SIGTERM" and the like.
    static QString Name(int signal);
    // The shell's convention: 128 + the signal's number.
    static int ExitCode(int signal) { return 128 + signal; }

private:
    void OnReadable();

    std::function<void(int)> m_onSignal;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Mbrun
