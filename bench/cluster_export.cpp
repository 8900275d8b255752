// A batch handed to Snakemake: the shipped NDVI model over 16 scenes exported with
// mbrun --export snakemake and run by snakemake --profile local, against the same
// rounds run by mbrun --jobs 0, measured here in the same run, for scenes of two
// sizes; then a rerun of the finished batch, and --list-rounds over 10,000 files
// against 16.
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
#include <cstdlib>
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

    // The batch of `size` scenes under snakemake and under mbrun --jobs 0, best of
    // three each, alternated (the machine is shared); each batch starts with no
    // output, so that every round runs. rerun: the finished batch run again.
    struct Batch
    {
        double jobs = 1e300, snake = 1e300, rerun = 1e300;
    };
    QStringList inputs;
    QString out;
    auto timeBatch = [&](int size) {
        Batch b;
        const QString name = QStringLiteral("s%1").arg(size);
        const QString scenes = Bench::MakeScenes(dir.path(), name + "-scenes", rounds, size, 4);
        out = dir.filePath(name + "-out");
        const QString flow = dir.filePath(name + "-flow");
        inputs = QStringList{model, "--set", "Scene folders=" + scenes, "--set", "Output folder=" + out};
        if (Bench::TimeProcess(mbrun, inputs + QStringList{"--export", "snakemake", flow}) < 0)
            std::exit(1);
        const QStringList local{"--profile", flow + "/profiles/local", "--quiet"};
        for (int r = 0; r < 3; ++r) {
            QDir(out).removeRecursively();
            b.jobs = std::min(b.jobs, Bench::TimeProcess(mbrun, inputs + QStringList{"--jobs", "0"}));
            QDir(out).removeRecursively();
            QDir(flow + "/rounds").removeRecursively();
            b.snake = std::min(b.snake, Bench::TimeProcess(snakemake, local));
        }
        for (int r = 0; r < 3; ++r)
            b.rerun = std::min(b.rerun, Bench::TimeProcess(snakemake, local));
        return b;
    };
    // Rounds of a few hundred milliseconds, as real scenes take, and rounds of a
    // few dozen, where Snakemake's own start (about a second) and a process per
    // round weigh most.
    const Batch large = timeBatch(4000);
    QDir(dir.filePath("s4000-scenes")).removeRecursively(); // a gigabyte
    const Batch small = timeBatch(1500);

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

    Bench::Print("cluster_snakemake_16_rounds_4000", large.snake, "ms (snakemake --profile local, scenes of 4000x4000x4)");
    Bench::Print("cluster_baseline_jobs_0_16_rounds_4000", large.jobs, "ms (mbrun --jobs 0, the same rounds)");
    Bench::Print("cluster_ratio_4000", large.snake / large.jobs, "x (target 1.3)");
    Bench::Print("cluster_snakemake_16_rounds_1500", small.snake, "ms (snakemake --profile local, scenes of 1500x1500x4)");
    Bench::Print("cluster_baseline_jobs_0_16_rounds_1500", small.jobs, "ms (mbrun --jobs 0, the same rounds)");
    Bench::Print("cluster_ratio_1500", small.snake / small.jobs, "x (target 1.3)");
    Bench::Print("cluster_rerun_finished", std::max(large.rerun, small.rerun), "ms (target 1000)");
    Bench::Print("cluster_rerun_ratio", small.rerun / small.snake, "x of the whole batch under snakemake");
    Bench::Print("cluster_list_rounds_10000_files", listMany, "ms (target 1000)");
    Bench::Print("cluster_baseline_list_rounds_16_files", listFew, "ms");
    Bench::Print("cluster_list_rounds_ratio", listMany / listFew, "x");
    return 0;
}
