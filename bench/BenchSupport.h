#pragma once
// Small helpers shared by the benchmark programs (header-only on purpose: each
// benchmark is one program).
#include "engine/ModelRun.h"

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

// Prepares and runs model on control the way every caller does and serves this
// thread's events until the run has ended; returns the wall time in milliseconds.
inline double RunToEnd(Plugin::SequenceControl& control, Plugin::APCModel& model, const QString& name)
{
    Plugin::ModelRun run(control, model);
    return Millis([&] {
        if (run.Start({}, name))
            run.Wait();
    });
}

} // namespace Bench
