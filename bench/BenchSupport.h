#pragma once
// Small helpers shared by the benchmark programs (header-only on purpose: each
// benchmark is one program).
#include "engine/ModelRun.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QStringList>
#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent>

#include <cstdio>
#include <algorithm>
#include <functional>
#include <vector>

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

// Wall milliseconds of one whole process, its output thrown away; -1, with what
// it said on standard error, if it failed.
inline double TimeProcess(const QString& program, const QStringList& args, int timeoutMs = 600000)
{
    QProcess p;
    p.setStandardOutputFile(QProcess::nullDevice());
    const double ms = Millis([&] {
        p.start(program, args);
        p.waitForFinished(timeoutMs);
    });
    if (p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0)
        return ms;
    std::fprintf(stderr, "%s %s: exit %d\n%s", qPrintable(program), qPrintable(args.join(' ')), p.exitCode(),
                 p.readAllStandardError().constData());
    return -1;
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

// The round trip the engine's threading needs, and nothing else: a task handed to
// the global pool whose finish a watcher reports back to this thread's event loop,
// the next task started from that report. Microseconds per round trip, median of 5.
inline double BareRoundTripMicros(int count)
{
    std::vector<double> runs;
    for (int r = 0; r < 5; ++r) {
        QEventLoop loop;
        QFutureWatcher<bool> watcher;
        int left = count;
        QObject::connect(&watcher, &QFutureWatcher<bool>::finished, &loop, [&] {
            if (--left > 0)
                watcher.setFuture(QtConcurrent::run([] { return true; }));
            else
                loop.quit();
        });
        runs.push_back(Millis([&] {
            watcher.setFuture(QtConcurrent::run([] { return true; }));
            loop.exec();
        }) * 1000.0 / count);
    }
    std::sort(runs.begin(), runs.end());
    return runs[runs.size() / 2];
}

} // namespace Bench
