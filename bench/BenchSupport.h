#pragma once
// Small helpers shared by the benchmark programs (header-only on purpose: each
// benchmark is one program).
#include <QByteArray>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace Bench {

inline void Print(const QByteArray& name, double value, const char* unit)
{
    std::printf("%s: %.3f %s\n", name.constData(), value, unit);
    std::fflush(stdout);
}

inline double Millis(const std::function<void()>& work)
{
    QElapsedTimer t;
    t.start();
    work();
    return t.nsecsElapsed() / 1e6;
}

// Serves this thread's events until done() holds; checks every millisecond
// without spinning a core the pool threads need.
inline void SpinUntil(const std::function<bool()>& done)
{
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] { if (done()) loop.quit(); });
    poll.start(1);
    if (!done())
        loop.exec();
}

} // namespace Bench
