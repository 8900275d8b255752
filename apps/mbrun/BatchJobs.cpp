// Rounds side by side: each few rounds run in a child mbrun (--round K-L), started
// by the ForkServer, so that their logs, memory and failures stay their own; the
// parent prints each child's log whole as it ends and gathers the reports in round
// order.
#include "BatchRun.h"
#include "ResumeState.h"

#include "CommandLine.h"
#include "Console.h"
#include "ForkServer.h"
#include "StopSignals.h"

#include "engine/APCLog.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

#include <cstdio>
#include <unistd.h>

namespace Mbrun {

namespace {

struct Child
{
    int round = 0; // its first
    int last = 0;
    QString report;
    int marks = 0; // its rounds that ended so far
};

QJsonObject readReport(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QJsonObject();
    return QJsonDocument::fromJson(file.readAll()).object();
}

} // namespace

int BatchRun::RunJobs(const Outline& outline, int jobs, const std::function<int()>& countRounds)
{
    if (!ForkServer::Available())
        return Refuse({QStringLiteral("mbrun: cannot start processes for the rounds: run with --jobs 1\n")});
    int rounds = outline.rounds.size();
    QTemporaryDir work(QDir::temp().filePath(QStringLiteral("mbrun-jobs-XXXXXX")));
    if (!work.isValid())
        return Refuse({QStringLiteral("mbrun: cannot make a folder for the rounds' reports: %1\n").arg(work.errorString())});
    // Each child marks its rounds' ends, for the progress line.
    QStringList common{m_options.ModelPath(), QStringLiteral("--round-marks")};
    for (const auto& s : m_options.Settings())
        common << QStringLiteral("--set") << s.first + QLatin1Char('=') + s.second;
    // A resumed run holds the state of every folder its rounds write into, as one
    // job would, and lets the rounds' runs read and merge into it.
    std::unique_ptr<ResumeState> held;
    if (m_options.Resume()) {
        held = std::make_unique<ResumeState>(m_options.ModelPath(), ResumeState::Mode::Run);
        if (!held->Hold(outline.folders))
            return Refuse({held->Conflict()});
        common << QStringLiteral("--state-held");
    }

    // Steps outside the iterator run once, with the first round, before the others start.
    const bool prologueFirst = !outline.prologue.isEmpty();
    std::map<int, std::unique_ptr<Child>> running;
    std::map<int, std::pair<int, QString>> ended; // first round -> last, its report, not yet taken
    // A process costs its start and its first touch of the memory its steps use,
    // as much as a short round: a child takes an equal share of the rounds, up to 16
    // in turn, so that a short batch starts one child per job.
    const int chunk = std::clamp((rounds + jobs - 1) / jobs, 1, 16);
    int next = 1;
    int merged = 1;
    bool prologueFailed = false;
    bool refused = false;
    bool stalled = false;
    int succeeded = 0, failed = 0; // the logs' counts
    int finished = 0;              // steps that ended, for a stop's closing line
    QStringList failedFiles, interruptedFiles, failedOutside;
    int roundsRun = 0;
    QEventLoop loop;

    // On a terminal a line under the logs tells how far the batch is; a child's
    // log takes its place while it is printed.
    const bool terminal = isatty(fileno(stderr));
    const QByteArray mark = CommandLine::RoundEndMark().toUtf8();
    int marked = 0; // rounds of the children that ended
    bool progressShown = false;
    QElapsedTimer clock;
    clock.start();
    auto showProgress = [&] {
        if (!terminal)
            return;
        int done = marked;
        for (const auto& child : running)
            done += child.second->marks;
        QString line = QStringLiteral("\rmbrun: %1 of %2 rounds done, %3 running").arg(done).arg(rounds).arg(running.size());
        const qint64 left = done > 0 ? clock.elapsed() * (rounds - done) / done / 1000 : 0;
        if (left > 0) {
            line += left >= 120 ? QStringLiteral(", about %1 min left").arg((left + 30) / 60)
                                : QStringLiteral(", about %1 s left").arg(left);
        }
        Console::Err(line + QStringLiteral("\x1b[K"));
        progressShown = true;
    };
    auto clearProgress = [&] {
        if (progressShown)
            Console::Err(QStringLiteral("\r\x1b[K"));
        progressShown = false;
    };

    auto take = [&](int round, const QString& path) {
        const QJsonObject report = readReport(path);
        const bool withoutPrologue = !(prologueFirst && round == 1);
        if (m_report)
            m_report->Merge(report, withoutPrologue);
        const QJsonObject summary = report.value(QStringLiteral("summary")).toObject();
        roundsRun += summary.value(QStringLiteral("rounds")).toInt();
        for (const char* key : {"succeeded", "failed", "skipped"})
            finished += summary.value(QLatin1String(key)).toInt();
        for (const QJsonValue& r : report.value(QStringLiteral("rounds")).toArray()) {
            const QString status = r[QStringLiteral("status")].toString();
            if (status == QLatin1String("failed"))
                failedFiles << r[QStringLiteral("file")].toString();
            else if (status == QLatin1String("interrupted"))
                interruptedFiles << r[QStringLiteral("file")].toString();
        }
        for (const QJsonValue& v : report.value(QStringLiteral("steps")).toArray()) {
            if (!v[QStringLiteral("round")].isNull())
                continue;
            const QString status = v[QStringLiteral("status")].toString();
            if (withoutPrologue)
                finished -= status == QLatin1String("skipped") ? 1 : 0;
            else if (status == QLatin1String("failed"))
                failedOutside << QLatin1Char('"') + v[QStringLiteral("step")].toString() + QLatin1Char('"');
        }
        const QString outcome = report.value(QStringLiteral("status")).toString();
        stalled = stalled || outcome == QLatin1String("stalled");
        refused = refused || outcome == QLatin1String("refused");
    };
    // Reports are taken in round order, so that the report lists them so.
    auto takeEnded = [&](bool all) {
        while (!ended.empty() && (all || ended.begin()->first == merged)) {
            take(ended.begin()->first, ended.begin()->second.second);
            QFile::remove(ended.begin()->second.second);
            merged = ended.begin()->second.first + 1;
            ended.erase(ended.begin());
        }
    };

    std::function<void()> startMore;
    auto onEnded = [&](int round, const ForkServer::Ended& run) {
        const Child& child = *running.at(round);
        clearProgress();
        // The child's log whole, never mixed with another round's.
        const QString log = QString::fromUtf8(run.out);
        Console::Out(log);
        Plugin::APCLog::AddSummaryCounts(log, &succeeded, &failed);
        marked += run.err.count(mark);
        const QString said = QString::fromUtf8(QByteArray(run.err).replace(mark, QByteArray()));
        // Without its report the child's own words are all there is to say why.
        const bool reported = run.code >= 0 && QFile::exists(child.report);
        if ((run.code == Refused || !reported) && !said.isEmpty())
            Say({said});
        if (!reported) {
            const QString why = run.failure.isEmpty() ? QStringLiteral("it exited with code %1").arg(run.code) : run.failure;
            Say({QStringLiteral("mbrun: the run of round %1 ended without a report (%2)\n").arg(round).arg(why)});
            refused = true;
        } else {
            ended.emplace(round, std::make_pair(child.last, child.report));
        }
        if (prologueFirst && round == 1) {
            takeEnded(false);
            // A failure outside any round ends a run: the other rounds do not start.
            prologueFailed = !failedOutside.isEmpty() || merged == 1;
            if (!prologueFailed)
                rounds = std::max(1, countRounds());
        }
        running.erase(round);
        takeEnded(false);
        startMore();
        if (!running.empty())
            showProgress();
    };
    startMore = [&] {
        while (!m_signal && !prologueFailed && next <= rounds && int(running.size()) < jobs) {
            if (prologueFirst && next > 1 && merged == 1)
                break; // the first round, with the steps outside the iterator, still runs
            auto child = std::make_unique<Child>();
            child->round = next;
            child->last = prologueFirst && next == 1 ? 1 : std::min(rounds, next + chunk - 1);
            child->report = work.filePath(QStringLiteral("round-%1.json").arg(next));
            QStringList args = common;
            args << QStringLiteral("--round")
                 << (child->last == next ? QString::number(next) : QStringLiteral("%1-%2").arg(next).arg(child->last));
            // The first round runs the steps outside the iterator as a whole run
            // would; the others leave them out.
            args << (prologueFirst && next == 1 ? QStringLiteral("--with-prologue") : QStringLiteral("--no-prologue"));
            args << QStringLiteral("--report") << child->report;
            const int round = next;
            next = child->last + 1;
            running.emplace(round, std::move(child));
            ForkServer::Run(
                args, [&, round](const ForkServer::Ended& run) { onEnded(round, run); },
                [&, round](const ForkServer::Ended& run) {
                    const auto child = running.find(round);
                    const int marks = run.err.count(mark);
                    if (child != running.end() && marks != child->second->marks) {
                        child->second->marks = marks;
                        showProgress();
                    }
                });
        }
        if (running.empty())
            loop.quit();
    };

    StopSignals stopSignals([&](int signal) {
        if (m_signal)
            return;
        m_signal = signal;
        clearProgress();
        Say({QStringLiteral("\nmbrun: %1: stopping the run\n").arg(StopSignals::Name(signal))});
        ForkServer::SignalAll(signal);
    });
    QMetaObject::invokeMethod(
        &loop,
        [&] {
            startMore();
            showProgress();
        },
        Qt::QueuedConnection);
    loop.exec();
    clearProgress();
    takeEnded(true);

    Console::Out(Plugin::APCLog::SummaryText(succeeded, failed));
    QStringList closing = outline.warnings;
    if (!failedFiles.isEmpty())
        closing << QStringLiteral("mbrun: %1 of %2 rounds failed: %3\n")
                       .arg(failedFiles.size())
                       .arg(roundsRun)
                       .arg(failedFiles.join(QStringLiteral(", ")));
    if (!failedOutside.isEmpty())
        closing << QStringLiteral("mbrun: failed outside any round: %1\n").arg(failedOutside.join(QStringLiteral(", ")));
    if (m_signal) {
        QString line = QStringLiteral("mbrun: %1 stopped the run; steps finished: %2").arg(StopSignals::Name(m_signal)).arg(finished);
        if (!interruptedFiles.isEmpty())
            line += QStringLiteral("; unfinished rounds: %1").arg(interruptedFiles.join(QStringLiteral(", ")));
        closing << line + QLatin1Char('\n');
    }
    Say(closing);

    return Conclude(nullptr, refused, stalled, failed > 0 || !failedFiles.isEmpty() || !failedOutside.isEmpty());
}

} // namespace Mbrun
