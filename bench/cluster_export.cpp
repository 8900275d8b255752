// A batch handed to Snakemake: the shipped NDVI model over 16 scenes exported with
// mbrun --export snakemake and run by snakemake --profile local, against the same
// rounds run by mbrun --jobs 0, measured here in the same run; then a rerun of the
// finished batch, and --list-rounds over 10,000 files against 16.
#include "BenchSupport.h"
#include "Scenes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gdal_priv.h>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath();
    const QString mbrun = bin + "/mbrun";
    const QString model = bin + "/../Model/apc/scene_ndvi.apc";
    const QString snakemake = QStandardPaths::findExecutable(QStringLiteral("snakemake"));
    if (!QFileInfo::exists(mbrun) || !QFileInfo::exists(model) || snakemake.isEmpty()) {
        std::fprintf(stderr, "needs %s, %s and snakemake on PATH (scripts/deps.sh)\n", qPrintable(mbrun), qPrintable(model));
        return 1;
    }
    QTemporaryDir dir;
    GDALAllRegister();
    const int rounds = 16;
    const QString scenes = Bench::MakeScenes(dir.path(), "scenes", rounds, 1500, 4);

    const QString out = dir.filePath("out"), flow = dir.filePath("flow");
    const QStringList inputs{model, "--set", "Scene folders=" + scenes, "--set", "Output folder=" + out};
    if (Bench::TimeProcess(mbrun, inputs + QStringList{"--export", "snakemake", flow}) < 0)
        return 1;
    const QStringList local{"--profile", flow + "/profiles/local", "--quiet"};
    // Alternated, best of three each: the machine is shared. Each batch starts with
    // no output, so that every round runs.
    double jobs = 1e300, snake = 1e300;
    for (int r = 0; r < 3; ++r) {
        QDir(out).removeRecursively();
        jobs = std::min(jobs, Bench::TimeProcess(mbrun, inputs + QStringList{"--jobs", "0"}));
        QDir(out).removeRecursively();
        QDir(flow + "/rounds").removeRecursively();
        snake = std::min(snake, Bench::TimeProcess(snakemake, local));
    }
    double rerun = 1e300;
    for (int r = 0; r < 3; ++r)
        rerun = std::min(rerun, Bench::TimeProcess(snakemake, local));

    // 10,000 files in one folder: listing and pairing only, no raster is opened.
    const QString many = dir.filePath("many");
    QDir().mkpath(many);
    for (int i = 0; i < 10000; ++i)
        QFile(QDir(many).filePath(QStringLiteral("scene_%1.tif").arg(i, 5, 10, QLatin1Char('0')))).open(QIODevice::WriteOnly);
    double listMany = 1e300, listFew = 1e300;
    for (int r = 0; r < 3; ++r) {
        listFew = std::min(listFew, Bench::TimeProcess(mbrun, inputs + QStringList{"--list-rounds"}));
        listMany = std::min(listMany, Bench::TimeProcess(mbrun, {model, "--set", "Scene folders=" + many, "--set",
                                                          "Output folder=" + out, "--list-rounds"}));
    }

    Bench::Print("cluster_snakemake_16_rounds", snake, "ms (snakemake --profile local)");
    Bench::Print("cluster_baseline_jobs_0_16_rounds", jobs, "ms (mbrun --jobs 0, the same rounds)");
    Bench::Print("cluster_ratio", snake / jobs, "x (target 1.3)");
    Bench::Print("cluster_rerun_finished", rerun, "ms (target 1000)");
    Bench::Print("cluster_rerun_ratio", rerun / snake, "x of the whole batch under snakemake");
    Bench::Print("cluster_list_rounds_10000_files", listMany, "ms (target 1000)");
    Bench::Print("cluster_baseline_list_rounds_16_files", listFew, "ms");
    Bench::Print("cluster_list_rounds_ratio", listMany / listFew, "x");
    return 0;
}
