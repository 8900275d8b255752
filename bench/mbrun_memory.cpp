// mbrun's memory against the length of a batch: the peak resident memory of a
// real run with --report and --resume over 200 and over 2,000 tiny scenes (two
// GDAL steps a round, the shipped NDVI model), the shorter run being the baseline.
// What a run keeps should follow what is running, not how much has run.
#include "BenchSupport.h"
#include "Scenes.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gdal_priv.h>

#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {


// Runs mbrun to its end, its log thrown away; its peak resident memory in MB,
// or -1 when it did not end with 0.
double peakMegabytes(const QString& mbrun, const QStringList& args)
{
    std::vector<QByteArray> texts{mbrun.toLocal8Bit()};
    for (const QString& a : args)
        texts.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& t : texts)
        argv.push_back(t.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return -1;
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "mbrun %s: did not succeed\n", qPrintable(args.join(' ')));
        return -1;
    }
    return usage.ru_maxrss / 1024.0; // kB on Linux
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath();
    const QString mbrun = bin + "/mbrun";
    const QString model = bin + "/../Model/apc/scene_ndvi.apc";
    if (!QFileInfo::exists(mbrun) || !QFileInfo::exists(model)) {
        std::fprintf(stderr, "needs %s and %s: build the mbrun target first\n", qPrintable(mbrun), qPrintable(model));
        return 1;
    }
    GDALAllRegister();
    QTemporaryDir dir;
    auto batch = [&](int rounds) {
        const QString scenes = dir.filePath(QStringLiteral("scenes_%1").arg(rounds));
        const QString out = dir.filePath(QStringLiteral("out_%1").arg(rounds));
        QDir().mkpath(scenes);
        for (int i = 0; i < rounds; ++i)
            Bench::MakeTinyScene(QDir(scenes).filePath(QStringLiteral("scene_%1.tif").arg(i, 4, 10, QLatin1Char('0'))));
        return peakMegabytes(mbrun, {model, "--set", "Scene folders=" + scenes, "--set", "Output folder=" + out,
                                     "--resume", "--report", QDir(out).filePath("report.json")});
    };
    const double small = batch(200);
    const double large = batch(2000);
    if (small < 0 || large < 0)
        return 1;
    Bench::Print("peak_rss_200_rounds", small, "MB (baseline: --report --resume, two GDAL steps a round)");
    Bench::Print("peak_rss_2000_rounds", large, "MB (the same over 2,000 rounds)");
    Bench::Print("peak_rss_difference", large - small, "MB (target < 10)");
    Bench::Print("peak_rss_ratio", large / small, "x");
    Bench::Print("peak_rss_per_round", (large - small) * 1024.0 / 1800, "kB");
    return 0;
}
