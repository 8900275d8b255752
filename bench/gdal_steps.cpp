// A model of real GDAL steps run by the engine against the same algorithms called
// one after another without it: the engine's overhead, and its gain on branches.
#include "BenchSupport.h"

#include "HostCatalog/Metadata.h"
#include "HostRunner/ExcuteAlgo.h"
#include "engine/APCAlgo.h"
#include "engine/SequenceControl.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/RemovedObjectBin.h"
#include "model/APCVar.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>
#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

using namespace Plugin;

namespace {

struct Step
{
    QString algorithm;
    QString in;
    QString out;
};

void makeDem(const QString& path, int size)
{
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    GDALDataset* ds = driver->Create(path.toUtf8().constData(), size, size, 1, GDT_Float32, nullptr);
    double gt[6] = {500000, 10, 0, 5000000, 0, -10};
    ds->SetGeoTransform(gt);
    std::vector<float> row(size);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            row[x] = float(300 + 120 * std::sin(x / 97.0) * std::cos(y / 131.0) + 0.01 * x);
        if (ds->GetRasterBand(1)->RasterIO(GF_Write, 0, y, size, 1, row.data(), size, 1, GDT_Float32, 0, 0) != CE_None)
            break;
    }
    GDALClose(ds);
}

// Adds the step, with constant vars holding its file names. Steps that read the
// output of an earlier step are joined to it through that step's output var.
void addStep(APCModel& model, const Step& s, QMap<QString, APCVar*>& outputs)
{
    auto* algo = new APCAlgo;
    algo->SetClass("algo");
    algo->SetProcessName(s.algorithm);
    model.AddProcess(algo);
    APCVar* in = model.FindVar(algo->GetParameter("In File").value.remove('%'));
    APCVar* out = model.FindVar(algo->GetParameter("Out File").value.remove('%'));
    out->SetConstant(true);
    out->SetValue(s.out);
    outputs.insert(s.out, out);
    if (APCVar* producer = outputs.value(s.in)) {
        model.RemoveVar(in);
        for (APCParameter& p : algo->GetParameters())
            if (p.name == "In File")
                p.value = "%" + producer->GetName() + "%";
        model.UpdateProcess(algo);
    } else {
        in->SetConstant(true);
        in->SetValue(s.in);
    }
}

// The text the engine would send for the step: every parameter at its default,
// the two file names set.
QByteArray stepJson(const Step& s)
{
    QJsonObject object;
    if (AlgoConfig* config = Metadata::Instance(QString())->GetConfig(s.algorithm))
        for (const Param& p : config->GetParams())
            object.insert(p.name, p.defaultValue);
    object.insert(QStringLiteral("In File"), s.in);
    object.insert(QStringLiteral("Out File"), s.out);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

double direct(const std::vector<Step>& steps)
{
    return Bench::Millis([&] {
        for (const Step& s : steps) {
            HostRunner::RunRecord record;
            std::memset(&record, 0, sizeof record);
            const QByteArray json = stepJson(s);
            HostRunner::ExcuteAlgo(s.algorithm.toUtf8().constData(), json.constData(), &record);
            if (record.errorCode != 0)
                std::printf("direct step failed: %s\n", record.errorMessage);
        }
    });
}

double engine(const std::vector<Step>& steps)
{
    APCModel model;
    RemovedObjectBin bin(model);
    QMap<QString, APCVar*> outputs;
    for (const Step& s : steps)
        addStep(model, s, outputs);
    SequenceControl control;
    const double ms = Bench::RunToEnd(control, model, "bench");
    int code = 0;
    QString message;
    control.GetError(code, message);
    if (code != 0)
        std::printf("engine run failed: %s\n", qPrintable(message));
    return ms;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // In memory where the system offers it: disk write-back stalls would
    // otherwise swamp the engine's share, which is what this measures.
    const QString shm = QStringLiteral("/dev/shm");
    QTemporaryDir dir(QFileInfo(shm).isWritable() ? shm + QStringLiteral("/mb-bench-XXXXXX") : QString());
    const QString dem = dir.filePath("dem.tif");
    makeDem(dem, 4000);
    auto f = [&](const char* name) { return dir.filePath(name); };

    const std::vector<Step> chain = {
        {"raster.translate", dem, f("copy.tif")},
        {"raster.hillshade", f("copy.tif"), f("shade.tif")},
        {"raster.slope", f("shade.tif"), f("slope.tif")},
        {"raster.aspect", f("slope.tif"), f("aspect.tif")},
    };
    const std::vector<Step> branches = {
        {"raster.hillshade", dem, f("b_shade.tif")},
        {"raster.slope", dem, f("b_slope.tif")},
        {"raster.aspect", dem, f("b_aspect.tif")},
        {"raster.translate", dem, f("b_copy.tif")},
    };
    // Medians of five runs each, after one warm-up of both, so that the file cache
    // treats the two ways alike.
    auto median = [](std::vector<double> v) { std::sort(v.begin(), v.end()); return v[v.size() / 2]; };
    for (const auto& scenario : {std::make_pair("chain_4_gdal_steps", &chain), std::make_pair("branches_4_gdal_steps", &branches)}) {
        const std::vector<Step>& steps = *scenario.second;
        direct(steps);
        engine(steps);
        std::vector<double> d, e;
        for (int r = 0; r < 5; ++r) {
            d.push_back(direct(steps));
            e.push_back(engine(steps));
        }
        const double dm = median(d), em = median(e);
        const QByteArray name(scenario.first);
        Bench::Print(name + "_direct_sequential_median", dm, "ms");
        Bench::Print(name + "_engine_median", em, "ms");
        Bench::Print(name + "_engine_overhead", 100.0 * (em - dm) / dm, "% (chain target < 5; branches target < 0)");
    }
    Bench::Print("pool_threads", QThreadPool::globalInstance()->maxThreadCount(), "");

    // A fan-out of eight steps writing to disk, with the pool at the core count
    // and above it: whether threads beyond the cores win back time that steps
    // spend waiting on the disk. The pool stays at the core count unless this
    // shows a clear gain.
    QTemporaryDir diskDir;
    const QString diskDem = diskDir.filePath("dem.tif");
    makeDem(diskDem, 3000);
    std::vector<Step> fanout;
    const char* algorithms[] = {"raster.hillshade", "raster.slope", "raster.aspect", "raster.translate"};
    for (int i = 0; i < 8; ++i)
        fanout.push_back({algorithms[i % 4], diskDem, diskDir.filePath(QStringLiteral("fan_%1.tif").arg(i))});
    const int cores = QThread::idealThreadCount();
    double atCores = 0;
    for (int threads : {cores, 2 * cores, 4 * cores}) {
        QThreadPool::globalInstance()->setMaxThreadCount(threads);
        engine(fanout);
        std::vector<double> e;
        for (int r = 0; r < 5; ++r)
            e.push_back(engine(fanout));
        const double em = median(e);
        if (threads == cores)
            atCores = em;
        const QByteArray name = "fanout_8_on_disk_pool_" + QByteArray::number(threads) + "_median";
        Bench::Print(name, em, threads == cores ? "ms (pool at the core count: the baseline)" : "ms");
        if (threads != cores)
            Bench::Print("fanout_8_on_disk_pool_" + QByteArray::number(threads) + "_to_core_count_ratio", em / atCores,
                         "x (below 0.95 would argue for a larger pool)");
    }
    QThreadPool::globalInstance()->setMaxThreadCount(cores);
    return 0;
}
