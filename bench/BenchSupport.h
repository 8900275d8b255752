#pragma once
// Small helpers shared by the benchmark programs (header-only on purpose: each
// benchmark is one program).
#include <QByteArray>
#include <QCoreApplication>
#include <QString>
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

// Builds and starts control on model and serves this thread's events until the
// run has ended; returns the wall time in milliseconds.
template <class Control, class Model>
double RunToEnd(Control& control, Model& model, const QString& name)
{
    QEventLoop loop;
    bool done = false;
    auto connection = control.NodeFinished.connect([&](auto* node) {
        if (!node) {
            done = true;
            loop.quit();
        }
    });
    const double ms = Millis([&] {
        control.SetName(name);
        control.Build(&model);
        control.Start();
        if (!done)
            loop.exec();
    });
    connection.disconnect();
    return ms;
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
