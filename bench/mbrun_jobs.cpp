// Rounds side by side. Two batches, each run by mbrun with one job per core
// against the same batch with one job, measured here in the same run, the
// outputs of both compared byte for byte:
//  - 16 rounds of a two-step chain on real rasters (hillshade, then a DEFLATE
//    copy), also against the same work run by xargs -P <cores> over gdaldem and
//    gdal_translate;
//  - the shipped NDVI model over 8 scenes of 1500x1500x4.
#include "BenchSupport.h"
#include "Scenes.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

QString g_mbrun;

QMap<QString, QByteArray> checksums(const QString& dir)
{
    QMap<QString, QByteArray> sums;
    for (const QFileInfo& f : QDir(dir).entryInfoList(QDir::Files)) {
        QFile file(f.filePath());
        file.open(QIODevice::ReadOnly);
        sums.insert(f.fileName(), QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5));
    }
    return sums;
}

int differing(const QMap<QString, QByteArray>& a, const QMap<QString, QByteArray>& b)
{
    int count = std::abs(a.size() - b.size());
    for (auto it = a.constBegin(); it != a.constEnd(); ++it)
        count += b.value(it.key()) != it.value() ? 1 : 0;
    return count;
}

// The shipped NDVI model made a hillshade then a DEFLATE copy of it, each a step
// with a GDAL program of its own.
bool writeChainModel(const QString& ndviModel, const QString& path)
{
    QFile in(ndviModel);
    if (!in.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromLatin1(in.readAll());
    text.replace("processName=\"raster.ndvi\"", "processName=\"raster.hillshade\"")
        .replace("processName=\"raster.bandStatistics\"", "processName=\"raster.translate\"")
        .replace("'_ndvi'", "'_hs'")
        .replace("'csv'", "'deflate.tif'")
        .replace("description=\"Statistics table\"/>",
                 "description=\"Statistics table\"/>\n            "
                 "<Parameter name=\"Creation options\" type=\"string\" direction=\"0\" value=\"COMPRESS=DEFLATE\" "
                 "description=\"Creation options\"/>");
    QFile out(path);
    return out.open(QIODevice::WriteOnly) && out.write(text.toLatin1()) > 0;
}

struct Timing
{
    double one = 1e300, all = 1e300; // best of three, --jobs 1 and --jobs 0
    int differing = 0;
};

// Alternated, best of three each: the machine may be shared.
Timing timeJobs(const QTemporaryDir& dir, const QString& model, const QString& scenes, const QString& name,
                const std::function<void()>& between = {})
{
    Timing t;
    for (int r = 0; r < 3; ++r) {
        for (const char* jobs : {"1", "0"}) {
            const QString out = dir.filePath(name + jobs);
            QDir(out).removeRecursively();
            const double ms = Bench::TimeProcess(g_mbrun, {model, "--set", "Scene folders=" + scenes, "--set", "Output folder=" + out,
                                                    "--jobs", jobs});
            double& best = jobs[0] == '1' ? t.one : t.all;
            best = std::min(best, ms);
        }
        if (between)
            between();
    }
    t.differing = differing(checksums(dir.filePath(name + "1")), checksums(dir.filePath(name + "0")));
    return t;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath();
    g_mbrun = bin + "/mbrun";
    const QString ndvi = bin + "/../Model/apc/scene_ndvi.apc";
    if (!QFileInfo::exists(g_mbrun) || !QFileInfo::exists(ndvi)) {
        std::fprintf(stderr, "needs %s and %s: build the mbrun target first\n", qPrintable(g_mbrun), qPrintable(ndvi));
        return 1;
    }
    QTemporaryDir dir;
    GDALAllRegister();
    const int cores = QThread::idealThreadCount();
    Bench::Print("jobs_cores", cores, "cores");

    const QString chain = dir.filePath("chain.apc");
    if (!writeChainModel(ndvi, chain)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(chain));
        return 1;
    }
    const QString dems = Bench::MakeScenes(dir.path(), "dems", 16, 2000, 1);
    // The same two steps per scene by the GDAL programs, cores at a time.
    const QString xargsOut = dir.filePath("xargs");
    double xargs = 1e300;
    const Timing c = timeJobs(dir, chain, dems, "chain", [&] {
        QDir(xargsOut).removeRecursively();
        QDir().mkpath(xargsOut);
        const QString script =
            QStringLiteral("ls %1/*.tif | xargs -P %2 -I{} sh -c 'b=$(basename {} .tif); "
                           "gdaldem hillshade -q {} %3/${b}_hs.tif && "
                           "gdal_translate -q -co COMPRESS=DEFLATE %3/${b}_hs.tif %3/${b}_hs.deflate.tif'")
                .arg(dems)
                .arg(cores)
                .arg(xargsOut);
        xargs = std::min(xargs, Bench::TimeProcess("sh", {"-c", script}));
    });
    Bench::Print("jobs_0_chain_16_rounds", c.all, "ms (--jobs 0, hillshade then a DEFLATE copy of 2000x2000)");
    Bench::Print("jobs_baseline_1_chain_16_rounds", c.one, "ms (--jobs 1, the same batch)");
    Bench::Print("jobs_chain_ratio", c.all / c.one, "x (target 0.6 on 2 cores)");
    Bench::Print("jobs_baseline_xargs_chain_16_rounds", xargs, "ms (xargs -P cores over gdaldem and gdal_translate)");
    Bench::Print("jobs_chain_ratio_to_xargs", c.all / xargs, "x (target 1.1)");
    Bench::Print("jobs_chain_outputs_differing", c.differing, "files (target 0)");

    const QString scenes = Bench::MakeScenes(dir.path(), "scenes", 8, 1500, 4);
    const Timing n = timeJobs(dir, ndvi, scenes, "ndvi");
    Bench::Print("jobs_0_ndvi_8_rounds", n.all, "ms (--jobs 0, the shipped NDVI model)");
    Bench::Print("jobs_baseline_1_ndvi_8_rounds", n.one, "ms (--jobs 1, the same batch)");
    Bench::Print("jobs_ndvi_ratio", n.all / n.one, "x (target 0.7 on 2 cores)");
    Bench::Print("jobs_ndvi_outputs_differing", n.differing, "files (target 0)");
    return 0;
}
