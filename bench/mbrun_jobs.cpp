// Rounds side by side: the shipped NDVI model (two GDAL steps a round) over 16
// scenes, run by mbrun with one job per core against the same batch with one job,
// measured here in the same run, and the outputs of both compared byte for byte.
#include "BenchSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gdal_priv.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

QString g_mbrun;

double timeMbrun(const QStringList& args)
{
    QProcess p;
    p.setStandardOutputFile(QProcess::nullDevice());
    return Bench::Millis([&] {
        p.start(g_mbrun, args);
        p.waitForFinished(-1);
        if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
            std::fprintf(stderr, "mbrun %s: exit %d\n%s", qPrintable(args.join(' ')), p.exitCode(),
                         p.readAllStandardError().constData());
    });
}

// A 4-band Byte scene whose bands differ, so that NDVI has something to compute.
void makeScene(const QString& path, int size, int seed)
{
    GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.toUtf8().constData(), size, size,
                                                                              4, GDT_Byte, nullptr);
    double gt[6] = {500000, 10, 0, 5000000, 0, -10};
    ds->SetGeoTransform(gt);
    std::vector<GByte> cells(size_t(size) * size);
    for (int b = 1; b <= 4; ++b) {
        for (size_t i = 0; i < cells.size(); ++i)
            cells[i] = GByte(1 + (b * 37 + seed + i) % 200);
        if (ds->GetRasterBand(b)->RasterIO(GF_Write, 0, 0, size, size, cells.data(), size, size, GDT_Byte, 0, 0) != CE_None)
            std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    }
    GDALClose(ds);
}

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

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString bin = QCoreApplication::applicationDirPath();
    g_mbrun = bin + "/mbrun";
    const QString model = bin + "/../Model/apc/scene_ndvi.apc";
    if (!QFileInfo::exists(g_mbrun) || !QFileInfo::exists(model)) {
        std::fprintf(stderr, "needs %s and %s: build the mbrun target first\n", qPrintable(g_mbrun), qPrintable(model));
        return 1;
    }
    QTemporaryDir dir;
    GDALAllRegister();
    const QString scenes = dir.filePath("scenes");
    QDir().mkpath(scenes);
    const int rounds = 16;
    for (int i = 0; i < rounds; ++i)
        makeScene(QDir(scenes).filePath(QStringLiteral("scene_%1.tif").arg(i, 2, 10, QLatin1Char('0'))), 1500, i);

    // Alternated, best of three each: the machine is shared.
    double one = 1e300, all = 1e300;
    for (int r = 0; r < 3; ++r)
        for (const char* jobs : {"1", "0"}) {
            const QString out = dir.filePath(QStringLiteral("out%1").arg(jobs));
            QDir(out).removeRecursively();
            const double ms = timeMbrun({model, "--set", "Scene folders=" + scenes, "--set", "Output folder=" + out,
                                         "--jobs", jobs});
            double& best = jobs[0] == '1' ? one : all;
            best = std::min(best, ms);
        }
    const QMap<QString, QByteArray> a = checksums(dir.filePath("out1")), b = checksums(dir.filePath("out0"));
    int differing = a.size() == b.size() ? 0 : std::abs(a.size() - b.size());
    for (auto it = a.constBegin(); it != a.constEnd(); ++it)
        differing += b.value(it.key()) != it.value() ? 1 : 0;
    Bench::Print("jobs_cores", QThread::idealThreadCount(), "cores");
    Bench::Print("jobs_0_16_rounds", all, "ms (--jobs 0)");
    Bench::Print("jobs_baseline_1_16_rounds", one, "ms (--jobs 1, the same batch)");
    Bench::Print("jobs_ratio", all / one, "x (target 0.6 on 2 cores)");
    Bench::Print("jobs_outputs_differing", differing, "files (target 0)");
    return 0;
}
