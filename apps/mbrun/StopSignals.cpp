#include "StopSignals.h"

#include "model/SoftAssert.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace Mbrun {

namespace {

int g_pipe[2] = {-1, -1};
const int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

extern "C" void onStopSignal(int signal)
{
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(signal);
    // A full pipe only loses a repeat of a signal already on its way.
    [[maybe_unused]] const ssize_t n = ::write(g_pipe[1], &byte, 1);
    errno = saved;
}

sigset_t stopSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (int s : kSignals)
        sigaddset(&set, s);
    return set;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int s : kSignals)
        sigaction(s, &action, nullptr);
}

} // namespace

StopSignals::StopSignals(std::function<void(int)> onSignal) : m_onSignal(std::move(onSignal))
{
    MB_ASSERT(g_pipe[0] < 0, return);
    if (::pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        g_pipe[0] = g_pipe[1] = -1;
        return; // the signals keep their default effect
    }
    m_notifier = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { OnReadable(); });
    setHandler(&onStopSignal);
    // A process of rounds side by side begins with them held: what came
    // meanwhile is served now.
    sigset_t stops = stopSet();
    pthread_sigmask(SIG_UNBLOCK, &stops, nullptr);
}

StopSignals::~StopSignals()
{
    if (g_pipe[0] < 0)
        return;
    setHandler(SIG_DFL);
    m_notifier.reset();
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

void StopSignals::OnReadable()
{
    unsigned char byte = 0;
    while (::read(g_pipe[0], &byte, 1) == 1)
        if (m_onSignal)
            m_onSignal(byte);
}

QString StopSignals::Name(int signal)
{
    switch (signal) {
    case SIGINT: return QStringLiteral("SIGINT");
    case SIGTERM: return QStringLiteral("SIGTERM");
    case SIGHUP: return QStringLiteral("SIGHUP");
    }
    return QStringLiteral("signal %1").arg(signal);
}

} // namespace Mbrun
