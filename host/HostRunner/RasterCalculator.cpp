// The raster calculator: an expression over one band of each of several rasters,
// named A, B, C, ... in the order of the inputs.

#include "HostRunner/BuiltinAlgorithms.h"
#include "HostRunner/GdalSupport.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <muParser.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <cmath>
#include <vector>

namespace HostRunner {

namespace {

constexpr char kInFiles[] = "In Files";
constexpr char kOut[] = "Out File";
constexpr int kMaxInputs = 26; // A..Z

// Lines read and computed at once: large enough for muparser's bulk mode to pay,
// small enough that 26 inputs of a wide raster stay in memory.
constexpr int kLinesPerChunk = 64;

QString variableName(int index)
{
    return QString(QChar('A' + index));
}

// Binds every letter the inputs name to its buffer from offset and compiles the
// expression; false with muparser's reason in *error.
bool compile(mu::Parser& parser, const QString& expression, std::vector<std::vector<double>>& buffers, size_t offset,
             QString* error)
{
    try {
        for (size_t i = 0; i < buffers.size(); ++i)
            parser.DefineVar(variableName(int(i)).toStdString(), buffers[i].data() + offset);
        parser.SetExpr(expression.toStdString());
        parser.Eval(); // compiles it, and finds unknown names and syntax errors
    } catch (const mu::Parser::exception_type& e) {
        *error = QString::fromStdString(e.GetMsg());
        return false;
    }
    return true;
}

bool runCalculator(GdalJob& job)
{
    const QStringList paths = SplitPaths(job.Text(kInFiles));
    if (paths.isEmpty())
        return job.Fail(kBadParameter, QStringLiteral("In Files lists no raster"));
    if (paths.size() > kMaxInputs)
        return job.Fail(kBadParameter, QStringLiteral("In Files lists %1 rasters; the letters A to Z name at most %2").arg(paths.size()).arg(kMaxInputs));
    std::vector<int> bands(size_t(paths.size()), 1);
    if (job.Has(QStringLiteral("Bands"))) {
        const QStringList parts = job.Text(QStringLiteral("Bands")).split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts);
        if (parts.size() != paths.size())
            return job.Fail(kBadParameter, QStringLiteral("Bands gives %1 band(s) for %2 raster(s); give one for each, e.g. 1,1,3")
                                               .arg(parts.size()).arg(paths.size()));
        for (int i = 0; i < parts.size(); ++i) {
            bool ok = false;
            bands[size_t(i)] = parts[i].toInt(&ok);
            if (!ok)
                return job.Fail(kBadParameter, QStringLiteral("Bands: '%1' is not a band number").arg(parts[i]));
        }
    }
    std::vector<GDALDatasetUniquePtr> sources;
    std::vector<GDALRasterBand*> inputs;
    for (int i = 0; i < paths.size(); ++i) {
        GDALDatasetUniquePtr ds = job.OpenRaster(paths[i]);
        if (!ds || !job.CheckBand(*ds, QStringLiteral("Band %1 of %2").arg(bands[size_t(i)]).arg(variableName(i)), bands[size_t(i)]))
            return false;
        if (!sources.empty() && (ds->GetRasterXSize() != sources.front()->GetRasterXSize()
                                 || ds->GetRasterYSize() != sources.front()->GetRasterYSize()))
            return job.Fail(kBadParameter, QStringLiteral("%1 is %2 x %3 pixels and %4 is %5 x %6; the inputs must be the same size")
                                               .arg(paths[i]).arg(ds->GetRasterXSize()).arg(ds->GetRasterYSize())
                                               .arg(paths.front()).arg(sources.front()->GetRasterXSize()).arg(sources.front()->GetRasterYSize()));
        inputs.push_back(ds->GetRasterBand(bands[size_t(i)]));
        sources.push_back(std::move(ds));
    }
    GDALDataType type = GDT_Float32;
    if (!job.DataType(QStringLiteral("Data Type"), &type))
        return false;
    bool hasNoData = false;
    double noData = 0.0;
    if (job.Has(QStringLiteral("NoData"))) {
        if (!job.Double(QStringLiteral("NoData"), &noData))
            return false;
        hasNoData = true;
    } else {
        int has = FALSE;
        noData = inputs.front()->GetNoDataValue(&has);
        hasNoData = has != 0;
    }

    const int width = sources.front()->GetRasterXSize(), height = sources.front()->GetRasterYSize();
    const size_t chunk = size_t(width) * size_t(kLinesPerChunk);
    std::vector<std::vector<double>> values(inputs.size(), std::vector<double>(chunk));
    std::vector<std::vector<GByte>> valid(inputs.size(), std::vector<GByte>(chunk));
    std::vector<double> result(chunk);
    // One parser per core, each over its own slice of every chunk: muparser evaluates
    // one value at a time, and a parser is not to be shared between threads.
    const size_t workers = std::max(1u, std::min(4u, std::thread::hardware_concurrency()));
    const size_t slice = (chunk + workers - 1) / workers;
    std::vector<std::unique_ptr<mu::Parser>> parsers;
    QString error;
    const QString expression = job.Text(QStringLiteral("Expression"));
    bool compiled = true;
    for (size_t w = 0; w < workers && compiled; ++w) {
        parsers.push_back(std::make_unique<mu::Parser>());
        compiled = compile(*parsers.back(), expression, values, w * slice, &error);
    }
    if (!compiled)
        return job.Fail(kBadParameter, QStringLiteral("Expression '%1': %2 (the inputs are %3)")
                                           .arg(expression, error,
                                                paths.size() == 1 ? QStringLiteral("A")
                                                                  : QStringLiteral("A to %1").arg(variableName(paths.size() - 1))));

    RasterTarget target;
    if (!target.Prepare(job, kOut))
        return false;
    GDALDatasetUniquePtr out = target.Create(job, width, height, 1, type);
    if (!out)
        return false;
    double gt[6];
    if (sources.front()->GetGeoTransform(gt) == CE_None)
        out->SetGeoTransform(gt);
    if (const OGRSpatialReference* srs = sources.front()->GetSpatialRef())
        out->SetSpatialRef(srs);
    GDALRasterBand* outBand = out->GetRasterBand(1);
    if (hasNoData)
        outBand->SetNoDataValue(noData);

    GdalProgress progress(job, QStringLiteral("Calculating %1").arg(QFileInfo(target.Path()).fileName()), 0.0, 90.0);
    std::vector<PassedBlocks> read;
    read.reserve(inputs.size());
    for (size_t i = 0; i < inputs.size(); ++i)
        read.emplace_back(*inputs[i], sources[i].get());
    PassedBlocks written(*outBand);
    for (int y = 0; y < height; y += kLinesPerChunk) {
        const int lines = std::min(kLinesPerChunk, height - y);
        const int count = width * lines;
        for (PassedBlocks& r : read)
            r.At(y);
        written.At(y);
        for (size_t i = 0; i < inputs.size(); ++i) {
            if (inputs[i]->RasterIO(GF_Read, 0, y, width, lines, values[i].data(), width, lines, GDT_Float64, 0, 0) != CE_None
                || (hasNoData && inputs[i]->GetMaskBand()->RasterIO(GF_Read, 0, y, width, lines, valid[i].data(), width, lines,
                                                                    GDT_Byte, 0, 0) != CE_None))
                return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot read lines %1 to %2 of %3").arg(y).arg(y + lines).arg(paths[int(i)]));
        }
        std::vector<QString> failures(workers);
        const auto evaluate = [&](size_t w) {
            const size_t from = w * slice;
            if (from >= size_t(count))
                return;
            try {
                parsers[w]->Eval(result.data() + from, int(std::min(slice, size_t(count) - from)));
            } catch (const mu::Parser::exception_type& e) {
                failures[w] = QString::fromStdString(e.GetMsg());
            }
        };
        std::vector<std::thread> threads;
        for (size_t w = 1; w < workers; ++w)
            threads.emplace_back(evaluate, w);
        evaluate(0);
        for (std::thread& t : threads)
            t.join();
        for (const QString& failure : failures)
            if (!failure.isEmpty())
                return job.Fail(kProcessingFailed, QStringLiteral("Expression '%1': %2").arg(expression, failure));
        if (hasNoData) {
            for (int p = 0; p < count; ++p) {
                bool ok = std::isfinite(result[size_t(p)]);
                for (size_t i = 0; ok && i < inputs.size(); ++i)
                    ok = valid[i][size_t(p)] != 0;
                if (!ok)
                    result[size_t(p)] = noData;
            }
        }
        if (outBand->RasterIO(GF_Write, 0, y, width, lines, result.data(), width, lines, GDT_Float64, 0, 0) != CE_None)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(target.Path()));
        progress.Report(double(y + lines) / height);
    }
    return target.Commit(job, std::move(out));
}

} // namespace

void RegisterRasterCalculator()
{
    RegisterGdalAlgorithm(
        MakeAlgoConfig(
            "Raster", "raster.calculator", "Raster calculator",
            "Computes an expression over a band of each of several rasters of the same size, named A, B, C, ... in input order.",
            {InputParam(kInFiles, QStringLiteral("multiFile"), QStringLiteral("Rasters the expression reads, separated by ';': A, B, ..."),
                        QString::fromLatin1(kRasterInputFilter)),
             InputParam(QStringLiteral("Expression"), QStringLiteral("string"),
                        QStringLiteral("e.g. (A - B) / (A + B) or A > 100 ? 1 : 0; functions such as sqrt, log, abs, min, max")),
             OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Result, one band on the grid of the first input"),
                         QString::fromLatin1(kRasterOutputFilter)),
             Optional(InputParam(QStringLiteral("Bands"), QStringLiteral("string"),
                                 QStringLiteral("Band of each input, in order, e.g. 1,1,3; empty reads band 1 of each"))),
             WithDefault(InputParam(QStringLiteral("Data Type"), QStringLiteral("string"),
                                    QStringLiteral("Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64; results are rounded and clipped to it")),
                         QStringLiteral("Float32")),
             Optional(InputParam(QStringLiteral("NoData"), QStringLiteral("float"),
                                 QStringLiteral("Written where an input is no-data or the result is not a number; empty takes the first input's")))}),
        runCalculator);
}

} // namespace HostRunner
