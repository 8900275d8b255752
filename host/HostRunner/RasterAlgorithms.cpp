#include "HostRunner/BuiltinAlgorithms.h"
#include "HostRunner/GdalSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <gdal_alg.h>
#include <gdal_utils.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>

namespace HostRunner {

namespace {

using Plugin::AlgoConfig;
using Plugin::Param;

// Plain arrays, not QStrings: registration may run before this file's dynamic initialisers.
constexpr char kIn[] = "In File";
constexpr char kOut[] = "Out File";
constexpr char kBand[] = "Band";

// NDVI has a range of -1..1, so this cannot be a real value.
constexpr double kNdviNoData = -9999.0;

template <typename T, void (*Free)(T*)>
struct OptionsDeleter
{
    void operator()(T* options) const { Free(options); }
};
using TranslateOptions = std::unique_ptr<GDALTranslateOptions, OptionsDeleter<GDALTranslateOptions, GDALTranslateOptionsFree>>;
using WarpOptions = std::unique_ptr<GDALWarpAppOptions, OptionsDeleter<GDALWarpAppOptions, GDALWarpAppOptionsFree>>;
using DemOptions = std::unique_ptr<GDALDEMProcessingOptions, OptionsDeleter<GDALDEMProcessingOptions, GDALDEMProcessingOptionsFree>>;
using NearblackOptions = std::unique_ptr<GDALNearblackOptions, OptionsDeleter<GDALNearblackOptions, GDALNearblackOptionsFree>>;
using InfoOptions = std::unique_ptr<GDALInfoOptions, OptionsDeleter<GDALInfoOptions, GDALInfoOptionsFree>>;
using BuildVrtOptions = std::unique_ptr<GDALBuildVRTOptions, OptionsDeleter<GDALBuildVRTOptions, GDALBuildVRTOptionsFree>>;

AlgoConfig rasterConfig(const char* name, const char* displayText, const char* help, QList<Param> params)
{
    return MakeAlgoConfig("Raster", name, displayText, help, std::move(params));
}

Param inRaster(const char* description = "Raster to read")
{
    return InputParam(kIn, QStringLiteral("file"), QString::fromUtf8(description), QString::fromLatin1(kRasterInputFilter));
}

Param outRaster(const char* description)
{
    return OutputParam(kOut, QStringLiteral("file"), QString::fromUtf8(description), QString::fromLatin1(kRasterOutputFilter));
}

Param bandParam(const char* description = "Band to read (1 = first)")
{
    return WithDefault(InputParam(kBand, QStringLiteral("int"), QString::fromUtf8(description)), QStringLiteral("1"));
}

Param number(const char* name, const char* type, const char* description, const char* defaultValue = nullptr)
{
    Param p = InputParam(QString::fromLatin1(name), QString::fromLatin1(type), QString::fromUtf8(description));
    return defaultValue ? WithDefault(p, QString::fromLatin1(defaultValue)) : p;
}

QByteArray encoded(const QString& path)
{
    return QFile::encodeName(path);
}

QString fileName(const QString& path)
{
    return QFileInfo(path).fileName();
}

// box (xmin, ymin, xmax, ymax in layer's coordinates) in raster's; false when it
// cannot be transformed, and box is then unchanged.
bool inRasterCoordinates(OGRLayer& layer, GDALDataset& raster, double box[4])
{
    const OGRSpatialReference* from = layer.GetSpatialRef();
    const OGRSpatialReference* to = raster.GetSpatialRef();
    if (!from || !to || from->IsSame(to))
        return true;
    OGRSpatialReference source(*from), target(*to);
    source.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    target.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    std::unique_ptr<OGRCoordinateTransformation> transform(OGRCreateCoordinateTransformation(&source, &target));
    double out[4];
    if (!transform || !transform->TransformBounds(box[0], box[1], box[2], box[3], &out[0], &out[1], &out[2], &out[3], 21))
        return false;
    std::copy(out, out + 4, box);
    return true;
}

// Copies source into the output parameter with GDALTranslate and args (format added);
// then, when given, runs after on the written dataset before it is closed.
bool translateInto(GdalJob& job, GDALDataset& source, ToolArgs args, const QString& what,
                   const std::function<bool(GDALDataset&)>& after = {})
{
    RasterTarget target;
    if (!target.Prepare(job, kOut, false))
        return false;
    target.AddFormatAndSwitches(job, args);
    TranslateOptions options(GDALTranslateOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("%1: invalid options").arg(what));
    GdalProgress progress(job, what);
    GDALTranslateOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(
        GDALTranslate(target.ToolPath().constData(), GDALDataset::ToHandle(&source), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("%1 into %2 failed").arg(what, target.Path()));
    if (after && !after(*result))
        return false;
    return target.Commit(job, std::move(result));
}

// Warps sources into the output parameter with GDALWarp and args (format added).
bool warpInto(GdalJob& job, std::vector<GDALDatasetH> sources, ToolArgs args, const QString& what)
{
    RasterTarget target;
    if (!target.Prepare(job, kOut))
        return false;
    target.AddFormatAndSwitches(job, args);
    WarpOptions options(GDALWarpAppOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("%1: invalid options").arg(what));
    GdalProgress progress(job, what, 0.0, 90.0);
    GDALWarpAppOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(GDALWarp(target.ToolPath().constData(), nullptr, int(sources.size()),
                                                                 sources.data(), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("%1 into %2 failed").arg(what, target.Path()));
    return target.Commit(job, std::move(result));
}

// The WKT of a spatial reference, in the version that keeps everything.
QByteArray wktOf(const OGRSpatialReference& srs)
{
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2018", nullptr};
    srs.exportToWkt(&text, options);
    const QByteArray wkt(text ? text : "");
    CPLFree(text);
    return wkt;
}

// ---------------------------------------------------------------------------------

bool runTranslate(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    ToolArgs args;
    if (job.Has(QStringLiteral("Bands"))) {
        std::vector<int> bands;
        if (!job.Bands(QStringLiteral("Bands"), src->GetRasterCount(), &bands))
            return false;
        for (int b : bands)
            args << "-b" << double(b);
    }
    if (job.Has(QStringLiteral("Extent"))) {
        std::vector<double> e;
        if (!job.Doubles(QStringLiteral("Extent"), 4, &e))
            return false;
        if (e[0] >= e[2] || e[1] >= e[3])
            return job.Fail(kBadParameter, QStringLiteral("Extent must be xmin,ymin,xmax,ymax with min below max"));
        if (!job.Overlaps(*src, in, QStringLiteral("The extent"), e.data()))
            return false;
        args << "-projwin" << e[0] << e[3] << e[2] << e[1];
    }
    if (job.Has(QStringLiteral("Data Type"))) {
        GDALDataType type = GDT_Unknown;
        if (!job.DataType(QStringLiteral("Data Type"), &type))
            return false;
        args << "-ot" << GDALGetDataTypeName(type);
    }
    return translateInto(job, *src, std::move(args), QStringLiteral("Converting %1").arg(fileName(in)));
}

bool runWarp(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    if (!src->GetSpatialRef())
        return job.Fail(kCannotOpenInput, QStringLiteral("%1 has no spatial reference, so it cannot be reprojected").arg(in));
    OGRSpatialReference target;
    QString resampling;
    if (!job.SpatialRef(QStringLiteral("Target SRS"), &target)
        || !job.OneOf(QStringLiteral("Resampling"),
                      {"near", "bilinear", "cubic", "cubicspline", "lanczos", "average", "mode", "min", "max", "med", "q1", "q3", "sum"},
                      &resampling))
        return false;
    ToolArgs args;
    args << "-t_srs" << wktOf(target) << "-r" << resampling;
    if (job.Has(QStringLiteral("Resolution"))) {
        double resolution = 0;
        if (!job.Double(QStringLiteral("Resolution"), &resolution))
            return false;
        if (resolution <= 0)
            return job.Fail(kBadParameter, QStringLiteral("Resolution must be positive, not %1").arg(resolution));
        args << "-tr" << resolution << resolution;
    }
    if (job.Has(QStringLiteral("Cutline"))) {
        const QString cutline = job.Text(QStringLiteral("Cutline"));
        GDALDatasetUniquePtr polygons = job.OpenVector(cutline); // fails early, and guards it against the output
        if (!polygons)
            return false;
        args << "-cutline" << encoded(cutline);
    }
    return warpInto(job, {GDALDataset::ToHandle(src.get())}, std::move(args),
                    QStringLiteral("Reprojecting %1").arg(fileName(in)));
}

bool runResample(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    double resolution = 0;
    QString resampling;
    if (!job.Double(QStringLiteral("Resolution"), &resolution)
        || !job.OneOf(QStringLiteral("Resampling"),
                      {"near", "bilinear", "cubic", "cubicspline", "lanczos", "average", "mode", "min", "max", "med", "q1", "q3", "sum"},
                      &resampling))
        return false;
    if (resolution <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Resolution must be positive, not %1").arg(resolution));
    ToolArgs args;
    args << "-tr" << resolution << resolution << "-r" << resampling;
    return warpInto(job, {GDALDataset::ToHandle(src.get())}, std::move(args), QStringLiteral("Resampling %1").arg(fileName(in)));
}

bool runClipExtent(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    double xmin, ymin, xmax, ymax;
    if (!job.Double(QStringLiteral("X Min"), &xmin) || !job.Double(QStringLiteral("Y Min"), &ymin)
        || !job.Double(QStringLiteral("X Max"), &xmax) || !job.Double(QStringLiteral("Y Max"), &ymax))
        return false;
    if (xmin >= xmax || ymin >= ymax)
        return job.Fail(kBadParameter, QStringLiteral("X Min and Y Min must be below X Max and Y Max"));
    double extent[4];
    if (!RasterExtent(*src, extent))
        return job.Fail(kCannotOpenInput, QStringLiteral("%1 is not a north-up georeferenced raster").arg(in));
    // Clip to the overlap only: a window past the edge would pad the output with zeros.
    const double box[4] = {xmin, ymin, xmax, ymax};
    double c[4];
    if (!job.Overlaps(*src, in, QStringLiteral("The extent"), box, c))
        return false;
    ToolArgs args;
    args << "-projwin" << c[0] << c[3] << c[2] << c[1];
    return translateInto(job, *src, std::move(args), QStringLiteral("Clipping %1").arg(fileName(in)));
}

bool runClipByPolygon(GdalJob& job)
{
    const QString in = job.Text(kIn);
    const QString maskPath = job.Text(QStringLiteral("Mask File"));
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    GDALDatasetUniquePtr mask = job.OpenVector(maskPath);
    if (!mask)
        return false;
    OGRLayer* layer = job.Layer(*mask, maskPath, QStringLiteral("Layer"));
    if (!layer)
        return false;
    const OGRwkbGeometryType type = wkbFlatten(layer->GetGeomType());
    if (type != wkbPolygon && type != wkbMultiPolygon && type != wkbUnknown && type != wkbCurvePolygon && type != wkbMultiSurface)
        return job.Fail(kBadParameter, QStringLiteral("Layer %1 of %2 holds %3 geometries, not polygons")
                                           .arg(QString::fromUtf8(layer->GetName()), maskPath,
                                                QString::fromUtf8(OGRGeometryTypeToName(type))));
    if (layer->GetFeatureCount() == 0)
        return job.Fail(kBadParameter, QStringLiteral("Layer %1 of %2 holds no polygons").arg(QString::fromUtf8(layer->GetName()), maskPath));
    // The output covers the polygons' extent: one far from the raster would be all no-data.
    OGREnvelope envelope;
    if (layer->GetExtent(&envelope, TRUE) == OGRERR_NONE) {
        double box[4] = {envelope.MinX, envelope.MinY, envelope.MaxX, envelope.MaxY};
        if (inRasterCoordinates(*layer, *src, box)
            && !job.Overlaps(*src, in, QStringLiteral("The extent of layer %1 of %2").arg(QString::fromUtf8(layer->GetName()), maskPath), box))
            return false;
    }

    double noData = 0.0;
    if (job.Has(QStringLiteral("NoData"))) {
        if (!job.Double(QStringLiteral("NoData"), &noData))
            return false;
    } else {
        int hasNoData = FALSE;
        const double v = src->GetRasterBand(1)->GetNoDataValue(&hasNoData);
        if (hasNoData)
            noData = v;
    }
    ToolArgs args;
    args << "-cutline" << encoded(maskPath) << "-cl" << QByteArray(layer->GetName()) << "-crop_to_cutline"
         << "-dstnodata" << noData;
    return warpInto(job, {GDALDataset::ToHandle(src.get())}, std::move(args),
                    QStringLiteral("Clipping %1").arg(fileName(in)));
}

bool runMosaic(GdalJob& job)
{
    const QStringList paths = SplitPaths(job.Text(QStringLiteral("In Files")));
    if (paths.isEmpty())
        return job.Fail(kBadParameter, QStringLiteral("In Files lists no raster"));
    std::vector<GDALDatasetUniquePtr> sources;
    std::vector<GDALDatasetH> handles;
    for (const QString& path : paths) {
        GDALDatasetUniquePtr ds = job.OpenRaster(path);
        if (!ds)
            return false;
        if (!sources.empty()) {
            GDALDataset& first = *sources.front();
            if (ds->GetRasterCount() != first.GetRasterCount())
                return job.Fail(kBadParameter, QStringLiteral("Cannot mosaic %1 (%2 band(s)) with %3 (%4 band(s))")
                                                   .arg(path).arg(ds->GetRasterCount()).arg(paths.front()).arg(first.GetRasterCount()));
            const OGRSpatialReference* a = first.GetSpatialRef();
            const OGRSpatialReference* b = ds->GetSpatialRef();
            if ((a == nullptr) != (b == nullptr) || (a && !a->IsSame(b)))
                return job.Fail(kBadParameter, QStringLiteral("Cannot mosaic %1 with %2: their spatial references differ; reproject first")
                                                   .arg(path, paths.front()));
        }
        handles.push_back(GDALDataset::ToHandle(ds.get()));
        sources.push_back(std::move(ds));
    }
    ToolArgs vrtArgs;
    vrtArgs << "-resolution" << "highest";
    if (job.Has(QStringLiteral("NoData"))) {
        double noData = 0;
        if (!job.Double(QStringLiteral("NoData"), &noData))
            return false;
        vrtArgs << "-srcnodata" << noData << "-vrtnodata" << noData;
    }
    BuildVrtOptions options(GDALBuildVRTOptionsNew(vrtArgs.Argv(), nullptr));
    int usageError = FALSE;
    GDALDatasetUniquePtr vrt(GDALDataset::FromHandle(
        GDALBuildVRT("", int(handles.size()), handles.data(), nullptr, options.get(), &usageError)));
    if (!vrt)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot combine %1 rasters").arg(paths.size()));
    return translateInto(job, *vrt, ToolArgs(), QStringLiteral("Mosaicking %1 rasters").arg(paths.size()));
}

// Runs one gdaldem mode on the band of parameter Band.
bool runDem(GdalJob& job, const char* mode, ToolArgs args, const QString& what, const QString& colorTable = QString())
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    if (!colorTable.isEmpty() && !QFileInfo(colorTable).isFile())
        return job.Fail(kCannotOpenInput, QStringLiteral("Cannot open colour table %1: no such file").arg(colorTable));
    int band = 1;
    if (!job.Int(kBand, &band) || !job.CheckBand(*src, kBand, band))
        return false;
    RasterTarget target;
    if (!target.Prepare(job, kOut, false))
        return false;
    args << "-b" << double(band) << "-compute_edges";
    target.AddFormatAndSwitches(job, args);
    DemOptions options(GDALDEMProcessingOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("%1: invalid options").arg(what));
    GdalProgress progress(job, QStringLiteral("%1 of %2").arg(what, fileName(in)));
    GDALDEMProcessingOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(GDALDEMProcessing(
        target.ToolPath().constData(), GDALDataset::ToHandle(src.get()), mode,
        colorTable.isEmpty() ? nullptr : encoded(colorTable).constData(), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("%1 of %2 failed").arg(what, in));
    return target.Commit(job, std::move(result));
}

bool runHillshade(GdalJob& job)
{
    double z, scale, azimuth, altitude;
    if (!job.Double(QStringLiteral("Z Factor"), &z) || !job.Double(QStringLiteral("Scale"), &scale)
        || !job.Double(QStringLiteral("Azimuth"), &azimuth) || !job.Double(QStringLiteral("Altitude"), &altitude))
        return false;
    if (scale <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Scale must be positive, not %1").arg(scale));
    if (altitude < 0 || altitude > 90)
        return job.Fail(kBadParameter, QStringLiteral("Altitude must be between 0 and 90 degrees, not %1").arg(altitude));
    ToolArgs args;
    args << "-z" << z << "-s" << scale << "-az" << azimuth << "-alt" << altitude;
    return runDem(job, "hillshade", std::move(args), QStringLiteral("Hillshade"));
}

bool runSlope(GdalJob& job)
{
    double scale;
    QString units;
    if (!job.Double(QStringLiteral("Scale"), &scale) || !job.OneOf(QStringLiteral("Units"), {"degrees", "percent"}, &units))
        return false;
    if (scale <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Scale must be positive, not %1").arg(scale));
    ToolArgs args;
    args << "-s" << scale;
    if (units == QLatin1String("percent"))
        args << "-p";
    return runDem(job, "slope", std::move(args), QStringLiteral("Slope"));
}

bool runAspect(GdalJob& job)
{
    return runDem(job, "aspect", ToolArgs(), QStringLiteral("Aspect"));
}

bool runColorRelief(GdalJob& job)
{
    QString matching;
    if (!job.OneOf(QStringLiteral("Matching"), {"interpolate", "exact", "nearest"}, &matching))
        return false;
    ToolArgs args;
    if (matching == QLatin1String("exact"))
        args << "-exact_color_entry";
    else if (matching == QLatin1String("nearest"))
        args << "-nearest_color_entry";
    if (job.Text(QStringLiteral("Alpha")) == QLatin1String("1"))
        args << "-alpha";
    return runDem(job, "color-relief", std::move(args), QStringLiteral("Colour relief"), job.Text(QStringLiteral("Color Table")));
}

bool runTri(GdalJob& job)
{
    QString method;
    if (!job.OneOf(QStringLiteral("Method"), {"Riley", "Wilson"}, &method))
        return false;
    ToolArgs args;
    args << "-alg" << method;
    return runDem(job, "TRI", std::move(args), QStringLiteral("Terrain ruggedness"));
}

bool runTpi(GdalJob& job)
{
    return runDem(job, "TPI", ToolArgs(), QStringLiteral("Topographic position"));
}

bool runRoughness(GdalJob& job)
{
    return runDem(job, "roughness", ToolArgs(), QStringLiteral("Roughness"));
}

// The no-data value of band, if it has one.
std::optional<double> noDataOf(GDALRasterBand& band)
{
    int has = FALSE;
    const double value = band.GetNoDataValue(&has);
    return has ? std::optional<double>(value) : std::nullopt;
}

// A one-band output on the grid of src, of type, with noData when given, through target.
GDALDatasetUniquePtr createLike(GdalJob& job, RasterTarget& target, GDALDataset& src, GDALDataType type,
                                std::optional<double> noData = std::nullopt)
{
    if (!target.Prepare(job, kOut))
        return nullptr;
    GDALDatasetUniquePtr out = target.Create(job, src.GetRasterXSize(), src.GetRasterYSize(), 1, type);
    if (!out)
        return nullptr;
    double gt[6];
    if (src.GetGeoTransform(gt) == CE_None)
        out->SetGeoTransform(gt);
    if (const OGRSpatialReference* srs = src.GetSpatialRef())
        out->SetSpatialRef(srs);
    if (noData)
        out->GetRasterBand(1)->SetNoDataValue(*noData);
    return out;
}

bool runNdvi(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    int red = 0, nir = 0;
    if (!job.Int(QStringLiteral("Red Band"), &red) || !job.CheckBand(*src, QStringLiteral("Red Band"), red)
        || !job.Int(QStringLiteral("NIR Band"), &nir) || !job.CheckBand(*src, QStringLiteral("NIR Band"), nir))
        return false;
    RasterTarget target;
    GDALDatasetUniquePtr out = createLike(job, target, *src, GDT_Float32, kNdviNoData);
    if (!out)
        return false;
    const int width = src->GetRasterXSize(), height = src->GetRasterYSize();
    GDALRasterBand* outBand = out->GetRasterBand(1);

    GDALRasterBand* redBand = src->GetRasterBand(red);
    GDALRasterBand* nirBand = src->GetRasterBand(nir);
    const size_t count = static_cast<size_t>(width);
    std::vector<double> r(count), n(count), v(count);
    std::vector<GByte> redValid(count), nirValid(count);
    GdalProgress progress(job, QStringLiteral("NDVI of %1").arg(fileName(in)), 0.0, 90.0);
    PassedBlocks read(*redBand, src.get()), written(*outBand);
    for (int y = 0; y < height; ++y) {
        read.At(y);
        written.At(y);
        if (redBand->RasterIO(GF_Read, 0, y, width, 1, r.data(), width, 1, GDT_Float64, 0, 0) != CE_None
            || nirBand->RasterIO(GF_Read, 0, y, width, 1, n.data(), width, 1, GDT_Float64, 0, 0) != CE_None
            || redBand->GetMaskBand()->RasterIO(GF_Read, 0, y, width, 1, redValid.data(), width, 1, GDT_Byte, 0, 0) != CE_None
            || nirBand->GetMaskBand()->RasterIO(GF_Read, 0, y, width, 1, nirValid.data(), width, 1, GDT_Byte, 0, 0) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot read line %1 of %2").arg(y).arg(in));
        for (size_t x = 0; x < count; ++x) {
            const double sum = n[x] + r[x];
            v[x] = redValid[x] && nirValid[x] && sum != 0.0 ? (n[x] - r[x]) / sum : kNdviNoData;
        }
        if (outBand->RasterIO(GF_Write, 0, y, width, 1, v.data(), width, 1, GDT_Float64, 0, 0) != CE_None)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(target.Path()));
        progress.Report((y + 1.0) / height);
    }
    return target.Commit(job, std::move(out));
}

bool runBuildVrt(GdalJob& job)
{
    const QStringList paths = SplitPaths(job.Text(QStringLiteral("In Files")));
    if (paths.isEmpty())
        return job.Fail(kBadParameter, QStringLiteral("In Files lists no raster"));
    std::vector<GDALDatasetUniquePtr> sources;
    std::vector<GDALDatasetH> handles;
    for (const QString& path : paths) {
        GDALDatasetUniquePtr ds = job.OpenRaster(path);
        if (!ds)
            return false;
        handles.push_back(GDALDataset::ToHandle(ds.get()));
        sources.push_back(std::move(ds));
    }
    QString resolution;
    if (!job.OneOf(QStringLiteral("Resolution"), {"average", "highest", "lowest"}, &resolution))
        return false;
    ToolArgs args;
    args << "-resolution" << resolution;
    if (job.Text(QStringLiteral("Separate")) == QLatin1String("1"))
        args << "-separate";
    args << job.Switches();
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vrt);
    if (!output)
        return false;
    BuildVrtOptions options(GDALBuildVRTOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("Build virtual raster: invalid options"));
    GdalProgress progress(job, QStringLiteral("Building %1").arg(fileName(output->Path())));
    GDALBuildVRTOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    // Sources by name: the file then names them as given, as gdalbuildvrt writes them.
    std::vector<QByteArray> names;
    std::vector<const char*> namePointers;
    for (const QString& path : paths)
        names.push_back(encoded(path));
    for (const QByteArray& name : names)
        namePointers.push_back(name.constData());
    sources.clear();
    GDALDatasetUniquePtr vrt(GDALDataset::FromHandle(GDALBuildVRT(encoded(output->WritePath()).constData(), int(names.size()),
                                                                  nullptr, namePointers.data(), options.get(), &usageError)));
    if (!vrt)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot build %1").arg(output->Path()));
    return job.CloseOutput(vrt, output->Path());
}

bool runNearblack(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    QString color;
    int near = 15;
    if (!job.OneOf(QStringLiteral("Color"), {"black", "white"}, &color) || !job.Int(QStringLiteral("Near"), &near, 0, 255))
        return false;
    ToolArgs args;
    if (color == QLatin1String("white"))
        args << "-white";
    args << "-near" << double(near);
    RasterTarget target;
    if (!target.Prepare(job, kOut))
        return false;
    target.AddFormatAndSwitches(job, args);
    NearblackOptions options(GDALNearblackOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("Nearblack: invalid options"));
    GdalProgress progress(job, QStringLiteral("Clearing the edges of %1").arg(fileName(in)), 0.0, 90.0);
    GDALNearblackOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(
        GDALNearblack(target.ToolPath().constData(), nullptr, GDALDataset::ToHandle(src.get()), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Clearing the edges of %1 into %2 failed").arg(in, target.Path()));
    return target.Commit(job, std::move(result));
}

bool runInfo(GdalJob& job)
{
    const QString in = job.Text(kIn);
    // Statistics asked for (-stats) would be kept in a .aux.xml beside the input,
    // a file no step of the model writes: the report is the only output.
    const CPLConfigOptionSetter noSidecar("GDAL_PAM_ENABLED", "NO", false);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    const OutputFile* out = job.PrepareOutput(kOut, OutputKind::Report);
    if (!out)
        return false;
    ToolArgs args;
    if (QFileInfo(out->Path()).suffix().compare(QLatin1String("json"), Qt::CaseInsensitive) == 0)
        args << "-json";
    args << job.Switches();
    InfoOptions options(GDALInfoOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("Raster information: invalid options"));
    char* text = GDALInfo(GDALDataset::ToHandle(src.get()), options.get());
    if (!text)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot describe %1").arg(in));
    const QByteArray report(text);
    CPLFree(text);
    QFile file(out->WritePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(report) != report.size() || !file.flush())
        return job.Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: %2").arg(out->Path(), file.errorString()));
    return true;
}

// Opens In File and its band from parameter Band; null (the job failed) when either is missing.
GDALRasterBand* inputBand(GdalJob& job, GDALDatasetUniquePtr& src)
{
    src = job.OpenRaster(job.Text(kIn));
    int band = 1;
    if (!src || !job.Int(kBand, &band) || !job.CheckBand(*src, kBand, band))
        return nullptr;
    return src->GetRasterBand(band);
}

// Copies band into target line by line, in band's own type.
bool copyBand(GdalJob& job, GDALRasterBand& band, GDALRasterBand& target)
{
    const int width = band.GetXSize();
    std::vector<double> line(static_cast<size_t>(width));
    PassedBlocks read(band), written(target);
    for (int y = 0; y < band.GetYSize(); ++y) {
        read.At(y);
        written.At(y);
        if (band.RasterIO(GF_Read, 0, y, width, 1, line.data(), width, 1, GDT_Float64, 0, 0) != CE_None
            || target.RasterIO(GF_Write, 0, y, width, 1, line.data(), width, 1, GDT_Float64, 0, 0) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot copy line %1").arg(y));
    }
    return true;
}

bool runProximity(GdalJob& job)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    QString units;
    if (!job.OneOf(QStringLiteral("Units"), {"PIXEL", "GEO"}, &units))
        return false;
    CPLStringList options;
    options.SetNameValue("DISTUNITS", units.toLatin1().constData());
    if (job.Has(QStringLiteral("Values"))) {
        std::vector<double> values;
        const QStringList parts = job.Text(QStringLiteral("Values")).split(QRegularExpression(QStringLiteral("[,\\s]+")), Qt::SkipEmptyParts);
        if (!job.Doubles(QStringLiteral("Values"), parts.size(), &values))
            return false;
        options.SetNameValue("VALUES", parts.join(QLatin1Char(',')).toLatin1().constData());
    }
    double number = 0;
    if (job.Has(QStringLiteral("Max Distance"))) {
        if (!job.Double(QStringLiteral("Max Distance"), &number))
            return false;
        options.SetNameValue("MAXDIST", QByteArray::number(number, 'g', 17).constData());
    }
    std::optional<double> noData;
    if (job.Has(QStringLiteral("NoData"))) {
        if (!job.Double(QStringLiteral("NoData"), &number))
            return false;
        options.SetNameValue("NODATA", QByteArray::number(number, 'g', 17).constData());
        noData = number;
    }
    RasterTarget target;
    GDALDatasetUniquePtr out = createLike(job, target, *src, GDT_Float32, noData);
    if (!out)
        return false;
    GdalProgress progress(job, QStringLiteral("Proximity"), 0.0, 90.0);
    if (GDALComputeProximity(GDALRasterBand::ToHandle(band), GDALRasterBand::ToHandle(out->GetRasterBand(1)), options.List(),
                             &GdalProgress::Function, &progress) != CE_None)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Proximity failed"));
    return target.Commit(job, std::move(out));
}

bool runSieve(GdalJob& job)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    int threshold = 2;
    QString connectedness;
    if (!job.Int(QStringLiteral("Threshold"), &threshold, 1) || !job.OneOf(QStringLiteral("Connectedness"), {"4", "8"}, &connectedness))
        return false;
    RasterTarget target;
    GDALDatasetUniquePtr out = createLike(job, target, *src, band->GetRasterDataType(), noDataOf(*band));
    if (!out)
        return false;
    GdalProgress progress(job, QStringLiteral("Sieving"), 0.0, 90.0);
    if (GDALSieveFilter(GDALRasterBand::ToHandle(band), GDALRasterBand::ToHandle(band->GetMaskBand()),
                        GDALRasterBand::ToHandle(out->GetRasterBand(1)), threshold, connectedness.toInt(), nullptr,
                        &GdalProgress::Function, &progress) != CE_None)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Sieving failed"));
    return target.Commit(job, std::move(out));
}

bool runFillNoData(GdalJob& job)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    double distance = 100;
    int smoothing = 0;
    if (!job.Double(QStringLiteral("Max Distance"), &distance) || !job.Int(QStringLiteral("Smoothing"), &smoothing, 0, 100))
        return false;
    if (distance <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Max Distance must be positive, not %1").arg(distance));
    RasterTarget target;
    GDALDatasetUniquePtr out = createLike(job, target, *src, band->GetRasterDataType(), noDataOf(*band));
    if (!out)
        return false;
    GDALRasterBand* filled = out->GetRasterBand(1);
    if (!copyBand(job, *band, *filled))
        return false;
    GdalProgress progress(job, QStringLiteral("Filling no-data"), 0.0, 90.0);
    if (GDALFillNodata(GDALRasterBand::ToHandle(filled), GDALRasterBand::ToHandle(filled->GetMaskBand()), distance, 0,
                       smoothing, nullptr, &GdalProgress::Function, &progress) != CE_None)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Filling no-data failed"));
    return target.Commit(job, std::move(out));
}

// Contour lines (or, with polygons, the areas between them) of the band of In File.
bool contour(GdalJob& job, bool polygons)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    double interval = 0, base = 0;
    if (!job.Double(QStringLiteral("Interval"), &interval) || !job.Double(QStringLiteral("Base"), &base))
        return false;
    if (interval <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Interval must be positive, not %1").arg(interval));
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    GDALDatasetUniquePtr ds = CreateVectorOutput(job, *output);
    if (!ds)
        return false;
    // Named and laid out as gdal_contour writes them.
    OGRLayer* layer = ds->CreateLayer("contour", const_cast<OGRSpatialReference*>(src->GetSpatialRef()),
                                      polygons ? wkbMultiPolygon : wkbLineString, LayerOptionsFor(job, output->Driver()).List());
    if (!layer)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create layer in %1").arg(output->Path()));
    QStringList fields{QStringLiteral("ID")};
    if (polygons)
        fields << job.Text(QStringLiteral("Min Field")) << job.Text(QStringLiteral("Max Field"));
    else
        fields << job.Text(QStringLiteral("Field"));
    for (int i = 0; i < fields.size(); ++i) {
        OGRFieldDefn field(fields[i].toUtf8().constData(), i == 0 ? OFTInteger : OFTReal);
        field.SetWidth(i == 0 ? 8 : 12);
        field.SetPrecision(i == 0 ? 0 : 3);
        if (layer->CreateField(&field) != OGRERR_NONE)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create field %1 in %2").arg(fields[i], output->Path()));
    }
    CPLStringList options;
    options.SetNameValue("LEVEL_INTERVAL", QByteArray::number(interval, 'g', 17).constData());
    options.SetNameValue("LEVEL_BASE", QByteArray::number(base, 'g', 17).constData());
    options.SetNameValue("ID_FIELD", "0");
    if (polygons) {
        options.SetNameValue("ELEV_FIELD_MIN", "1");
        options.SetNameValue("ELEV_FIELD_MAX", "2");
        options.SetNameValue("POLYGONIZE", "YES");
    } else {
        options.SetNameValue("ELEV_FIELD", "1");
    }
    int hasNoData = FALSE;
    const double noData = band->GetNoDataValue(&hasNoData);
    if (hasNoData)
        options.SetNameValue("NODATA", QByteArray::number(noData, 'g', 17).constData());
    GdalProgress progress(job, QStringLiteral("Contours"), 0.0, 95.0);
    const bool transaction = ds->StartTransaction() == OGRERR_NONE;
    if (GDALContourGenerateEx(GDALRasterBand::ToHandle(band), OGRLayer::ToHandle(layer), options.List(),
                              &GdalProgress::Function, &progress) != CE_None)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Contouring failed"));
    if (transaction && ds->CommitTransaction() != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(output->Path()));
    return job.CloseOutput(ds, output->Path());
}

bool runContour(GdalJob& job)
{
    return contour(job, false);
}

bool runContourPolygons(GdalJob& job)
{
    return contour(job, true);
}

bool runOverviews(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    QString resampling;
    if (!job.OneOf(QStringLiteral("Resampling"), {"nearest", "average", "bilinear", "cubic", "cubicspline", "lanczos", "mode", "gauss", "rms"},
                   &resampling))
        return false;
    std::vector<int> levels;
    for (const QString& part : job.Text(QStringLiteral("Levels")).split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts)) {
        bool ok = false;
        const int level = part.toInt(&ok);
        if (!ok || level < 2)
            return job.Fail(kBadParameter, QStringLiteral("Levels: '%1' is not a factor of 2 or more").arg(part));
        levels.push_back(level);
    }
    if (levels.empty())
        return job.Fail(kBadParameter, QStringLiteral("Levels lists no factor, e.g. 2 4 8"));
    return translateInto(job, *src, ToolArgs(), QStringLiteral("Copying %1").arg(fileName(in)), [&](GDALDataset& out) {
        GdalProgress progress(job, QStringLiteral("Overviews of %1").arg(fileName(in)), 50.0, 95.0);
        if (out.BuildOverviews(resampling.toUpper().toLatin1().constData(), int(levels.size()), levels.data(), 0, nullptr,
                               &GdalProgress::Function, &progress, nullptr) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot build the overviews of %1").arg(fileName(in)));
        return true;
    });
}

// Exact statistics of one band over its valid pixels (mask and no-data respected).
struct BandStats
{
    qint64 valid = 0;
    qint64 invalid = 0;
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();
    double sum = 0.0;
    double mean = 0.0;
    double m2 = 0.0; // Welford: sum of squared deviations from the running mean

    void Add(double v, bool isValid)
    {
        if (!isValid || std::isnan(v)) {
            ++invalid;
            return;
        }
        ++valid;
        min = std::min(min, v);
        max = std::max(max, v);
        sum += v;
        const double delta = v - mean;
        mean += delta / double(valid);
        m2 += delta * (v - mean);
    }
};

bool computeStats(GdalJob& job, GDALRasterBand& band, GdalProgress& progress, double from, double to, BandStats* stats)
{
    const int width = band.GetXSize(), height = band.GetYSize();
    const size_t count = static_cast<size_t>(width);
    std::vector<double> values(count);
    std::vector<GByte> valid(count);
    PassedBlocks read(band);
    for (int y = 0; y < height; ++y) {
        read.At(y);
        if (band.RasterIO(GF_Read, 0, y, width, 1, values.data(), width, 1, GDT_Float64, 0, 0) != CE_None
            || band.GetMaskBand()->RasterIO(GF_Read, 0, y, width, 1, valid.data(), width, 1, GDT_Byte, 0, 0) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot read line %1 of band %2").arg(y).arg(band.GetBand()));
        for (size_t x = 0; x < count; ++x)
            stats->Add(values[x], valid[x] != 0);
        progress.Report((from + (to - from) * (y + 1.0) / height) / 100.0);
    }
    return true;
}

bool runBandStatistics(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    std::vector<int> bands;
    if (job.Has(kBand)) {
        int band = 0;
        if (!job.Int(kBand, &band) || !job.CheckBand(*src, kBand, band))
            return false;
        bands.push_back(band);
    } else {
        for (int b = 1; b <= src->GetRasterCount(); ++b)
            bands.push_back(b);
    }
    const OutputFile* out = job.PrepareOutput(kOut, OutputKind::Table);
    if (!out)
        return false;

    QByteArray csv("band,valid_pixels,nodata_pixels,min,max,mean,stddev,sum\n");
    GdalProgress progress(job, QStringLiteral("Statistics of %1").arg(fileName(in)));
    const auto number = [](double v) { return QByteArray::number(v, 'g', 12); };
    for (size_t i = 0; i < bands.size(); ++i) {
        BandStats s;
        const double from = 100.0 * double(i) / double(bands.size());
        const double to = 100.0 * double(i + 1) / double(bands.size());
        if (!computeStats(job, *src->GetRasterBand(bands[i]), progress, from, to, &s))
            return false;
        csv += QByteArray::number(bands[i]) + ',' + QByteArray::number(s.valid) + ',' + QByteArray::number(s.invalid);
        if (s.valid > 0) {
            const double stddev = std::sqrt(s.m2 / double(s.valid)); // of the population: every pixel is counted
            csv += ',' + number(s.min) + ',' + number(s.max) + ',' + number(s.mean) + ',' + number(stddev) + ',' + number(s.sum);
        } else {
            csv += ",,,,,";
        }
        csv += '\n';
    }
    QFile file(out->WritePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(csv) != csv.size() || !file.flush())
        return job.Fail(kCannotWriteOutput, QStringLiteral("Cannot write %1: %2").arg(out->Path(), file.errorString()));
    return true;
}

bool runPolygonize(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src = job.OpenRaster(in);
    if (!src)
        return false;
    int bandNumber = 1;
    QString connectedness;
    const QString fieldName = job.Text(QStringLiteral("Field"));
    if (!job.Int(kBand, &bandNumber) || !job.CheckBand(*src, kBand, bandNumber)
        || !job.OneOf(QStringLiteral("Connectedness"), {"4", "8"}, &connectedness))
        return false;
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    GDALDatasetUniquePtr ds = CreateVectorOutput(job, *output);
    if (!ds)
        return false;
    const QString& out = output->Path();
    GDALRasterBand* band = src->GetRasterBand(bandNumber);
    const bool floating = GDALDataTypeIsFloating(band->GetRasterDataType());
    // CreateLayer clones the spatial reference; it only lacks the const.
    OGRLayer* layer = ds->CreateLayer(QFileInfo(out).completeBaseName().toUtf8().constData(),
                                      const_cast<OGRSpatialReference*>(src->GetSpatialRef()),
                                      wkbPolygon, LayerOptionsFor(job, output->Driver()).List());
    OGRFieldDefn field(fieldName.toUtf8().constData(), floating ? OFTReal : OFTInteger);
    if (!layer || layer->CreateField(&field) != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create layer in %1").arg(out));

    CPLStringList options;
    if (connectedness == QLatin1String("8"))
        options.SetNameValue("8CONNECTED", "8");
    GDALRasterBand* mask = (band->GetMaskFlags() & GMF_ALL_VALID) ? nullptr : band->GetMaskBand();
    GdalProgress progress(job, QStringLiteral("Polygonizing %1").arg(fileName(in)), 0.0, 95.0);
    const bool transaction = ds->StartTransaction() == OGRERR_NONE; // GeoPackage is slow without one
    const int fieldIndex = layer->GetLayerDefn()->GetFieldCount() - 1;
    const auto polygonize = floating ? GDALFPolygonize : GDALPolygonize;
    if (polygonize(GDALRasterBand::ToHandle(band), GDALRasterBand::ToHandle(mask), OGRLayer::ToHandle(layer), fieldIndex, options.List(), &GdalProgress::Function, &progress) != CE_None)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Polygonizing %1 failed").arg(in));
    if (transaction && ds->CommitTransaction() != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(out));
    return job.CloseOutput(ds, out);
}

struct ClassRange
{
    double min;
    double max;
    double value;
};

// The ranges of parameter Table, "min,max,value;min,max,value".
bool classRanges(GdalJob& job, std::vector<ClassRange>* ranges)
{
    for (const QString& part : job.Text(QStringLiteral("Table")).split(QLatin1Char(';'))) {
        const QString item = part.trimmed();
        if (item.isEmpty())
            continue;
        const QStringList numbers = item.split(QLatin1Char(','));
        ClassRange range{};
        bool ok = numbers.size() == 3;
        double* fields[] = {&range.min, &range.max, &range.value};
        for (int i = 0; ok && i < 3; ++i)
            *fields[i] = numbers[i].trimmed().toDouble(&ok);
        if (!ok)
            return job.Fail(kBadParameter, QStringLiteral("Table: '%1' is not min,max,value").arg(item));
        if (!(range.min < range.max))
            return job.Fail(kBadParameter, QStringLiteral("Table: in '%1' the minimum is not below the maximum").arg(item));
        ranges->push_back(range);
    }
    if (ranges->empty())
        return job.Fail(kBadParameter, QStringLiteral("Table holds no range; write min,max,value;min,max,value"));
    return true;
}

bool runReclassify(GdalJob& job)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    std::vector<ClassRange> ranges;
    GDALDataType type = GDT_Unknown;
    if (!classRanges(job, &ranges) || !job.DataType(QStringLiteral("Data Type"), &type))
        return false;
    double noData = noDataOf(*band).value_or(0.0);
    if (job.Has(QStringLiteral("NoData")) && !job.Double(QStringLiteral("NoData"), &noData))
        return false;
    double otherwise = noData;
    if (job.Has(QStringLiteral("Default")) && !job.Double(QStringLiteral("Default"), &otherwise))
        return false;
    RasterTarget target;
    GDALDatasetUniquePtr out = createLike(job, target, *src, type, noData);
    if (!out)
        return false;
    GDALRasterBand* outBand = out->GetRasterBand(1);
    const int width = band->GetXSize(), height = band->GetYSize();
    std::vector<double> line(static_cast<size_t>(width));
    std::vector<GByte> valid(static_cast<size_t>(width));
    GdalProgress progress(job, QStringLiteral("Reclassifying %1").arg(fileName(job.Text(kIn))), 0.0, 90.0);
    PassedBlocks read(*band, src.get()), written(*outBand);
    for (int y = 0; y < height; ++y) {
        read.At(y);
        written.At(y);
        if (band->RasterIO(GF_Read, 0, y, width, 1, line.data(), width, 1, GDT_Float64, 0, 0) != CE_None
            || band->GetMaskBand()->RasterIO(GF_Read, 0, y, width, 1, valid.data(), width, 1, GDT_Byte, 0, 0) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot read line %1 of %2").arg(y).arg(job.Text(kIn)));
        for (size_t x = 0; x < line.size(); ++x) {
            const double v = line[x];
            if (!valid[x] || std::isnan(v)) {
                line[x] = noData;
                continue;
            }
            line[x] = otherwise;
            for (const ClassRange& range : ranges)
                if (range.min <= v && v < range.max) {
                    line[x] = range.value;
                    break;
                }
        }
        if (outBand->RasterIO(GF_Write, 0, y, width, 1, line.data(), width, 1, GDT_Float64, 0, 0) != CE_None)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(target.Path()));
        progress.Report((y + 1.0) / height);
    }
    return target.Commit(job, std::move(out));
}

// How many pixels of a zone are placed on the raster at once.
constexpr int kZoneStripPixels = 1 << 22;

// The fields of zonal statistics, in order; the count first.
constexpr const char* kZoneFields[] = {"count", "sum", "mean", "min", "max"};

// Adds to stats the pixels of band (on the grid gt) whose centres lie inside zone,
// the pixels gdal_rasterize would burn; mem is GDAL's in-memory driver.
bool addZone(GdalJob& job, GDALRasterBand& band, const double gt[6], OGRGeometry& zone, GDALDriver& mem, BandStats* stats)
{
    OGREnvelope env;
    zone.getEnvelope(&env);
    const int width = band.GetXSize(), height = band.GetYSize();
    const double ax = (env.MinX - gt[0]) / gt[1], bx = (env.MaxX - gt[0]) / gt[1];
    const double ay = (env.MaxY - gt[3]) / gt[5], by = (env.MinY - gt[3]) / gt[5];
    const auto clamp = [](double v, int limit) { return int(std::max(0.0, std::min(double(limit), v))); };
    const int x0 = clamp(std::floor(std::min(ax, bx)), width), x1 = clamp(std::ceil(std::max(ax, bx)), width);
    const int y0 = clamp(std::floor(std::min(ay, by)), height), y1 = clamp(std::ceil(std::max(ay, by)), height);
    const int w = x1 - x0, h = y1 - y0;
    if (w <= 0 || h <= 0)
        return true; // outside the raster
    // A strip of rows at a time, so a zone as large as the raster needs no mask as large.
    const int rows = std::max(1, std::min(h, kZoneStripPixels / w));
    const size_t count = size_t(w) * size_t(rows);
    std::vector<GByte> in(count), valid(count);
    std::vector<double> values(count);
    GDALDatasetUniquePtr inside(mem.Create("", w, rows, 1, GDT_Byte, nullptr));
    if (!inside)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot make a zone mask of %1 x %2 pixels").arg(w).arg(rows));
    GDALRasterBand* mask = inside->GetRasterBand(1);
    for (int top = y0; top < y1; top += rows) {
        const int n = std::min(rows, y1 - top);
        double window[6] = {gt[0] + x0 * gt[1], gt[1], 0.0, gt[3] + top * gt[5], 0.0, gt[5]};
        inside->SetGeoTransform(window);
        mask->Fill(0);
        int bandList = 1;
        double burn = 1.0;
        OGRGeometryH handle = OGRGeometry::ToHandle(&zone);
        if (GDALRasterizeGeometries(GDALDataset::ToHandle(inside.get()), 1, &bandList, 1, &handle, nullptr, nullptr, &burn,
                                    nullptr, nullptr, nullptr) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot place a zone on the raster"));
        if (mask->RasterIO(GF_Read, 0, 0, w, n, in.data(), w, n, GDT_Byte, 0, 0) != CE_None
            || band.RasterIO(GF_Read, x0, top, w, n, values.data(), w, n, GDT_Float64, 0, 0) != CE_None
            || band.GetMaskBand()->RasterIO(GF_Read, x0, top, w, n, valid.data(), w, n, GDT_Byte, 0, 0) != CE_None)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot read lines %1 to %2 of band %3").arg(top).arg(top + n - 1).arg(band.GetBand()));
        for (size_t i = 0; i < size_t(w) * size_t(n); ++i)
            if (in[i])
                stats->Add(values[i], valid[i] != 0);
    }
    return true;
}

bool runZonalStatistics(GdalJob& job)
{
    GDALDatasetUniquePtr src;
    GDALRasterBand* band = inputBand(job, src);
    if (!band)
        return false;
    const QString in = job.Text(kIn);
    double gt[6], box[4];
    if (!RasterExtent(*src, box) || src->GetGeoTransform(gt) != CE_None)
        return job.Fail(kCannotOpenInput, QStringLiteral("%1 is not a north-up georeferenced raster, so zones cannot be placed on it").arg(in));
    const QString zonesPath = job.Text(QStringLiteral("Zones File"));
    GDALDatasetUniquePtr zonesSource = job.OpenVector(zonesPath);
    if (!zonesSource)
        return false;
    OGRLayer* zones = job.Layer(*zonesSource, zonesPath, QStringLiteral("Layer"));
    if (!zones)
        return false;
    std::unique_ptr<OGRCoordinateTransformation> transform;
    const OGRSpatialReference* from = zones->GetSpatialRef();
    const OGRSpatialReference* to = src->GetSpatialRef();
    if (from && to && !from->IsSame(to)) {
        OGRSpatialReference source(*from), target(*to);
        source.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        target.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        transform.reset(OGRCreateCoordinateTransformation(&source, &target));
        if (!transform)
            return job.FailGdal(kCannotOpenInput, QStringLiteral("Cannot bring the zones of %1 into the spatial reference of %2").arg(zonesPath, in));
    }
    const QString prefix = job.Text(QStringLiteral("Prefix"));
    for (const char* field : kZoneFields)
        if (zones->GetLayerDefn()->GetFieldIndex((prefix + QLatin1String(field)).toUtf8().constData()) >= 0)
            return job.Fail(kBadParameter, QStringLiteral("Prefix: the zones already have a field '%1'; choose a prefix")
                                               .arg(prefix + QLatin1String(field)));

    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    GDALDatasetUniquePtr ds = CreateVectorOutput(job, *output);
    if (!ds)
        return false;
    const QString& out = output->Path();
    // A CSV file is the table of the figures; other formats copy the polygons too.
    const bool table = output->Driver() == QLatin1String("CSV");
    std::vector<int> fieldMap;
    OGRLayer* target = CreateLayerLike(job, *ds, *output, *zones, table ? wkbNone : zones->GetGeomType(), &fieldMap);
    if (!target)
        return false;
    const int firstStat = target->GetLayerDefn()->GetFieldCount();
    for (int i = 0; i < int(std::size(kZoneFields)); ++i) {
        const QString name = prefix + QLatin1String(kZoneFields[i]);
        OGRFieldDefn defn(name.toUtf8().constData(), i == 0 ? OFTInteger64 : OFTReal);
        if (target->CreateField(&defn) != OGRERR_NONE)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create field %1 in %2").arg(name, out));
    }
    GDALDriver* mem = GetGDALDriverManager()->GetDriverByName("MEM");
    if (!mem)
        return job.Fail(kProcessingFailed, QStringLiteral("GDAL's in-memory format is not available"));

    const bool transaction = ds->StartTransaction() == OGRERR_NONE; // GeoPackage is slow without one
    const GIntBig total = std::max<GIntBig>(1, zones->GetFeatureCount());
    GdalProgress progress(job, QStringLiteral("Zonal statistics of %1").arg(fileName(in)), 0.0, 95.0);
    GIntBig done = 0;
    zones->ResetReading();
    for (OGRFeatureUniquePtr feature(zones->GetNextFeature()); feature; feature.reset(zones->GetNextFeature())) {
        BandStats stats;
        std::unique_ptr<OGRGeometry> zone(feature->GetGeometryRef() ? feature->GetGeometryRef()->clone() : nullptr);
        if (zone && transform && zone->transform(transform.get()) != OGRERR_NONE)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot transform zone %1 of %2").arg(feature->GetFID()).arg(zonesPath));
        if (zone && !zone->IsEmpty() && !addZone(job, *band, gt, *zone, *mem, &stats))
            return false;
        OGRFeatureUniquePtr result(OGRFeature::CreateFeature(target->GetLayerDefn()));
        result->SetFrom(feature.get(), fieldMap.data(), TRUE);
        if (table)
            result->SetGeometry(nullptr);
        result->SetField(firstStat, GIntBig(stats.valid));
        if (stats.valid > 0) { // else the figures stay empty
            const double values[] = {stats.sum, stats.sum / double(stats.valid), stats.min, stats.max};
            for (int i = 0; i < 4; ++i)
                result->SetField(firstStat + 1 + i, values[i]);
        }
        if (target->CreateFeature(result.get()) != OGRERR_NONE)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write zone %1 to %2").arg(feature->GetFID()).arg(out));
        progress.Report(double(++done) / double(total));
    }
    if (transaction && ds->CommitTransaction() != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(out));
    return job.CloseOutput(ds, out);
}

} // namespace

void RegisterRasterAlgorithms()
{
    RegisterGdalAlgorithm(
        rasterConfig("raster.translate", "Convert raster",
                     "Converts a raster to the format of the output's extension, optionally keeping some bands, a window or another data type.",
                     {inRaster(), outRaster("Converted raster; the extension picks the format (.tif, .img, .asc, .png)"),
                      Optional(InputParam(QStringLiteral("Bands"), QStringLiteral("string"),
                                          QStringLiteral("Bands to keep, in output order, e.g. 3,2,1; empty keeps all"))),
                      Optional(InputParam(QStringLiteral("Extent"), QStringLiteral("string"),
                                          QStringLiteral("Window to keep as xmin,ymin,xmax,ymax in the raster's coordinates"))),
                      Optional(InputParam(QStringLiteral("Data Type"), QStringLiteral("string"),
                                          QStringLiteral("Output data type: Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64; values outside its range are clipped")))}),
        runTranslate, GdalTool::Translate);

    RegisterGdalAlgorithm(
        rasterConfig("raster.warp", "Reproject raster", "Reprojects a raster into another spatial reference.",
                     {inRaster("Raster to reproject; it must have a spatial reference"),
                      InputParam(QStringLiteral("Target SRS"), QStringLiteral("spatialReference"),
                                 QStringLiteral("Spatial reference to reproject into: EPSG code (EPSG:4326), WKT or PROJ string")),
                      outRaster("Reprojected raster"),
                      Optional(number("Resolution", "float", "Output pixel size in target units; empty lets GDAL choose")),
                      WithDefault(InputParam(QStringLiteral("Resampling"), QStringLiteral("string"),
                                             QStringLiteral("near, bilinear, cubic, cubicspline, lanczos, average, mode, min, max, med, q1, q3 or sum")),
                                  QStringLiteral("near")),
                      Optional(InputParam(QStringLiteral("Cutline"), QStringLiteral("file"),
                                          QStringLiteral("Polygons outside which pixels become no-data; empty keeps all"),
                                          QString::fromLatin1(kVectorInputFilter)))}),
        runWarp, GdalTool::Warp);

    RegisterGdalAlgorithm(
        rasterConfig("raster.resample", "Resample raster", "Changes the pixel size of a raster, keeping its spatial reference.",
                     {inRaster(), number("Resolution", "float", "New pixel size in the raster's units"), outRaster("Resampled raster"),
                      WithDefault(InputParam(QStringLiteral("Resampling"), QStringLiteral("string"),
                                             QStringLiteral("near, bilinear, cubic, cubicspline, lanczos, average, mode, min, max, med, q1, q3 or sum")),
                                  QStringLiteral("near"))}),
        runResample, GdalTool::Warp);

    RegisterGdalAlgorithm(
        rasterConfig("raster.clipExtent", "Clip raster by extent",
                     "Cuts out the part of a raster inside a rectangle given in the raster's coordinates.",
                     {inRaster(), number("X Min", "float", "West edge of the rectangle"),
                      number("Y Min", "float", "South edge of the rectangle"), number("X Max", "float", "East edge of the rectangle"),
                      number("Y Max", "float", "North edge of the rectangle"), outRaster("Clipped raster")}),
        runClipExtent, GdalTool::Translate);

    RegisterGdalAlgorithm(
        rasterConfig("raster.clipByPolygon", "Clip raster by polygons",
                     "Keeps the pixels of a raster inside the polygons of a vector layer and crops to their extent.",
                     {inRaster(),
                      InputParam(QStringLiteral("Mask File"), QStringLiteral("file"),
                                 QStringLiteral("Vector layer with the polygons to keep"), QString::fromLatin1(kVectorInputFilter)),
                      outRaster("Clipped raster"),
                      Optional(InputParam(QStringLiteral("Layer"), QStringLiteral("string"),
                                          QStringLiteral("Layer of the mask file; empty takes the first"))),
                      Optional(number("NoData", "float",
                                      "Value of pixels outside the polygons; empty takes the raster's no-data value, else 0"))}),
        runClipByPolygon, GdalTool::Warp);

    RegisterGdalAlgorithm(
        rasterConfig("raster.mosaic", "Mosaic rasters",
                     "Merges rasters with the same bands and spatial reference into one; where they overlap, later ones win.",
                     {InputParam(QStringLiteral("In Files"), QStringLiteral("multiFile"),
                                 QStringLiteral("Rasters to merge, separated by ';'"), QString::fromLatin1(kRasterInputFilter)),
                      outRaster("Merged raster"),
                      Optional(number("NoData", "float", "Value treated as empty in the inputs and written where none covers"))}),
        runMosaic, GdalTool::Translate);

    RegisterGdalAlgorithm(
        rasterConfig("raster.hillshade", "Hillshade", "Computes a shaded relief (0-255) from an elevation model.",
                     {inRaster("Elevation model"), bandParam(), outRaster("Shaded relief, Byte"),
                      number("Z Factor", "float", "Vertical exaggeration", "1"),
                      number("Scale", "float", "Horizontal units per vertical unit; 111120 for degrees over metres", "1"),
                      number("Azimuth", "float", "Direction of the light in degrees clockwise from north", "315"),
                      number("Altitude", "float", "Height of the light above the horizon in degrees", "45")}),
        runHillshade, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.slope", "Slope", "Computes the slope of an elevation model in degrees or percent.",
                     {inRaster("Elevation model"), bandParam(), outRaster("Slope, Float32"),
                      WithDefault(InputParam(QStringLiteral("Units"), QStringLiteral("string"), QStringLiteral("degrees or percent")),
                                  QStringLiteral("degrees")),
                      number("Scale", "float", "Horizontal units per vertical unit; 111120 for degrees over metres", "1")}),
        runSlope, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.aspect", "Aspect",
                     "Computes the direction each cell of an elevation model faces, in degrees clockwise from north.",
                     {inRaster("Elevation model"), bandParam(), outRaster("Aspect, Float32; flat cells are no-data")}),
        runAspect, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.colorRelief", "Colour relief",
                     "Colours an elevation model by a table of elevations and colours, as gdaldem color-relief does.",
                     {inRaster("Elevation model"), bandParam(),
                      InputParam(QStringLiteral("Color Table"), QStringLiteral("file"),
                                 QStringLiteral("Text file of lines 'elevation red green blue [alpha]'; elevations may be "
                                                "percentages (50%) or nv for no-data"),
                                 QStringLiteral("Colour tables (*.txt *.csv);;All files (*)")),
                      outRaster("Coloured relief, three Byte bands (four with Alpha)"),
                      WithDefault(InputParam(QStringLiteral("Matching"), QStringLiteral("string"),
                                             QStringLiteral("interpolate between entries, exact entries only (else black), "
                                                            "or the nearest entry")),
                                  QStringLiteral("interpolate")),
                      WithDefault(number("Alpha", "int", "1 adds an alpha band"), QStringLiteral("0"))}),
        runColorRelief, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.tri", "Terrain ruggedness index",
                     "Computes the terrain ruggedness index of an elevation model: how much each cell differs from its eight neighbours.",
                     {inRaster("Elevation model"), bandParam(), outRaster("TRI, Float32"),
                      WithDefault(InputParam(QStringLiteral("Method"), QStringLiteral("string"),
                                             QStringLiteral("Riley (for terrain) or Wilson (for bathymetry)")),
                                  QStringLiteral("Riley"))}),
        runTri, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.tpi", "Topographic position index",
                     "Computes the topographic position index: each cell's elevation minus the mean of its eight neighbours.",
                     {inRaster("Elevation model"), bandParam(), outRaster("TPI, Float32")}),
        runTpi, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.roughness", "Roughness",
                     "Computes the roughness of an elevation model: the largest difference within each cell's 3x3 window.",
                     {inRaster("Elevation model"), bandParam(), outRaster("Roughness, Float32")}),
        runRoughness, GdalTool::DemProcessing);

    RegisterGdalAlgorithm(
        rasterConfig("raster.ndvi", "NDVI",
                     "Computes the normalised difference vegetation index (NIR - red) / (NIR + red) as Float32.",
                     {inRaster("Multi-band image"), number("Red Band", "int", "Band holding red", "3"),
                      number("NIR Band", "int", "Band holding near infrared", "4"),
                      outRaster("NDVI from -1 to 1; -9999 where an input is no-data or both bands are 0")}),
        runNdvi);

    RegisterGdalAlgorithm(
        rasterConfig("raster.bandStatistics", "Band statistics",
                     "Writes exact minimum, maximum, mean, standard deviation and pixel counts of raster bands to a CSV file.",
                     {inRaster(), Optional(number("Band", "int", "Band to measure; empty measures all")),
                      OutputParam(kOut, QStringLiteral("file"),
                                  QStringLiteral("CSV table, one line per band: band,valid_pixels,nodata_pixels,min,max,mean,stddev,sum"),
                                  QString::fromLatin1(kTableOutputFilter))}),
        runBandStatistics);

    RegisterGdalAlgorithm(
        rasterConfig("raster.proximity", "Proximity",
                     "Computes for every pixel the distance to the nearest pixel of chosen values, as gdal_proximity does.",
                     {inRaster(), bandParam(), outRaster("Distances, Float32"),
                      Optional(InputParam(QStringLiteral("Values"), QStringLiteral("string"),
                                          QStringLiteral("Target pixel values, e.g. 1,2; empty takes every non-zero pixel"))),
                      WithDefault(InputParam(QStringLiteral("Units"), QStringLiteral("string"),
                                             QStringLiteral("PIXEL counts pixels, GEO uses georeferenced units")),
                                  QStringLiteral("PIXEL")),
                      Optional(number("Max Distance", "float", "Distance beyond which pixels get NoData; empty has none")),
                      Optional(number("NoData", "float", "Value beyond Max Distance"))}),
        runProximity);

    RegisterGdalAlgorithm(
        rasterConfig("raster.sieve", "Sieve",
                     "Replaces areas of fewer pixels than a threshold by the value of their largest neighbour, as gdal_sieve does.",
                     {inRaster(), bandParam(), outRaster("Sieved raster, the input's type"),
                      number("Threshold", "int", "Smallest area, in pixels, that stays", "2"),
                      WithDefault(InputParam(QStringLiteral("Connectedness"), QStringLiteral("int"),
                                             QStringLiteral("4 joins pixels by edges, 8 also by corners")),
                                  QStringLiteral("4"))}),
        runSieve);

    RegisterGdalAlgorithm(
        rasterConfig("raster.fillNoData", "Fill no-data",
                     "Fills no-data pixels by interpolating from the valid pixels around them, as gdal_fillnodata does.",
                     {inRaster(), bandParam(), outRaster("Filled raster, the input's type"),
                      number("Max Distance", "float", "How far, in pixels, to search for valid values", "100"),
                      number("Smoothing", "int", "Smoothing passes over the filled areas", "0")}),
        runFillNoData);

    RegisterGdalAlgorithm(
        rasterConfig("raster.contour", "Contour lines", "Draws contour lines of an elevation model at a fixed interval, as gdal_contour does.",
                     {inRaster("Elevation model"), bandParam(),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Lines with fields ID and the elevation"),
                                  QString::fromLatin1(kVectorOutputFilter)),
                      number("Interval", "float", "Elevation between two lines"),
                      number("Base", "float", "Elevation one line passes through", "0"),
                      WithDefault(InputParam(QStringLiteral("Field"), QStringLiteral("string"), QStringLiteral("Field of the elevation")),
                                  QStringLiteral("elev"))}),
        runContour);

    RegisterGdalAlgorithm(
        rasterConfig("raster.contourPolygons", "Contour polygons",
                     "Turns the bands between contour lines of an elevation model into polygons, as gdal_contour -p does.",
                     {inRaster("Elevation model"), bandParam(),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Polygons with fields ID and the band's lower and upper elevation"),
                                  QString::fromLatin1(kVectorOutputFilter)),
                      number("Interval", "float", "Elevation between two lines"),
                      number("Base", "float", "Elevation one line passes through", "0"),
                      WithDefault(InputParam(QStringLiteral("Min Field"), QStringLiteral("string"), QStringLiteral("Field of the lower elevation")),
                                  QStringLiteral("amin")),
                      WithDefault(InputParam(QStringLiteral("Max Field"), QStringLiteral("string"), QStringLiteral("Field of the upper elevation")),
                                  QStringLiteral("amax"))}),
        runContourPolygons);

    RegisterGdalAlgorithm(
        rasterConfig("raster.overviews", "Build overviews",
                     "Copies a raster with reduced-resolution overviews inside (or beside, for formats without), as gdal_translate then gdaladdo do.",
                     {inRaster(), outRaster("Copy with overviews"),
                      WithDefault(InputParam(QStringLiteral("Levels"), QStringLiteral("string"),
                                             QStringLiteral("Reduction factors, e.g. 2 4 8 16")),
                                  QStringLiteral("2 4 8")),
                      WithDefault(InputParam(QStringLiteral("Resampling"), QStringLiteral("string"),
                                             QStringLiteral("nearest, average, bilinear, cubic, cubicspline, lanczos, mode, gauss or rms")),
                                  QStringLiteral("nearest"))}),
        runOverviews, GdalTool::Translate);

    RegisterGdalAlgorithm(
        rasterConfig("raster.buildVrt", "Build virtual raster",
                     "Writes a virtual raster (.vrt) that shows several rasters as one mosaic, or as the bands of one raster, without copying them.",
                     {InputParam(QStringLiteral("In Files"), QStringLiteral("multiFile"),
                                 QStringLiteral("Rasters to combine, separated by ';'"), QString::fromLatin1(kRasterInputFilter)),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Virtual raster naming its sources"),
                                  QString::fromLatin1(kVrtOutputFilter)),
                      WithDefault(InputParam(QStringLiteral("Resolution"), QStringLiteral("string"),
                                             QStringLiteral("Pixel size when the sources differ: average, highest or lowest")),
                                  QStringLiteral("average")),
                      WithDefault(number("Separate", "int", "1 puts each source into a band of its own"), QStringLiteral("0"))}),
        runBuildVrt, GdalTool::BuildVrt);

    RegisterGdalAlgorithm(
        rasterConfig("raster.nearblack", "Clear near-black edges",
                     "Turns the nearly black (or white) collars of a scanned or warped image into exact black (or white), as nearblack does.",
                     {inRaster(), outRaster("Image with clean edges"),
                      WithDefault(InputParam(QStringLiteral("Color"), QStringLiteral("string"), QStringLiteral("black or white")),
                                  QStringLiteral("black")),
                      number("Near", "int", "How far from black (or white) a value may be, 0 to 255", "15")}),
        runNearblack, GdalTool::Nearblack);

    RegisterGdalAlgorithm(
        rasterConfig("raster.info", "Raster information",
                     "Writes what gdalinfo tells of a raster to a file: JSON for a .json output, text for .txt.",
                     {inRaster(),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Report; .json writes gdalinfo -json"),
                                  QString::fromLatin1(kReportOutputFilter))}),
        runInfo, GdalTool::Info);

    RegisterGdalAlgorithm(
        rasterConfig("raster.polygonize", "Polygonize raster",
                     "Turns areas of equal pixel value into polygons carrying that value.",
                     {inRaster(), bandParam(),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Polygon layer; the extension picks the format"),
                                  QString::fromLatin1(kVectorOutputFilter)),
                      WithDefault(InputParam(QStringLiteral("Field"), QStringLiteral("string"),
                                             QStringLiteral("Name of the field that receives the pixel value")),
                                  QStringLiteral("value")),
                      WithDefault(InputParam(QStringLiteral("Connectedness"), QStringLiteral("int"),
                                             QStringLiteral("4 joins pixels by edges, 8 also by corners")),
                                  QStringLiteral("4"))}),
        runPolygonize);

    RegisterGdalAlgorithm(
        rasterConfig("raster.reclassify", "Reclassify by table",
                     "Gives each pixel the value of the range of a table it falls in, such as classes of elevation or slope.",
                     {inRaster(), bandParam(),
                      InputParam(QStringLiteral("Table"), QStringLiteral("string"),
                                 QStringLiteral("Ranges as min,max,value;min,max,value; a pixel is in a range when min <= pixel < max, "
                                                "and the first range it is in wins")),
                      outRaster("Reclassified raster"),
                      Optional(number("Default", "float", "Value of pixels in no range; empty makes them no-data")),
                      Optional(number("NoData", "float", "No-data value of the output, also where the input is no-data; "
                                                         "empty takes the input's, else 0")),
                      WithDefault(InputParam(QStringLiteral("Data Type"), QStringLiteral("string"),
                                             QStringLiteral("Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64; values are "
                                                            "rounded and clipped to it")),
                                  QStringLiteral("Float32"))}),
        runReclassify);

    RegisterGdalAlgorithm(
        rasterConfig("raster.zonalStatistics", "Zonal statistics",
                     "Counts and sums the pixels of a raster inside each polygon of a layer, into a CSV table or a copy of "
                     "the layer.",
                     {inRaster(), bandParam(),
                      InputParam(QStringLiteral("Zones File"), QStringLiteral("file"),
                                 QStringLiteral("Polygons; a pixel belongs to those its centre lies in"),
                                 QString::fromLatin1(kVectorInputFilter)),
                      OutputParam(kOut, QStringLiteral("file"),
                                  QStringLiteral("The polygons' fields and count, sum, mean, min and max of the valid pixels in "
                                                 "each: a .csv file is this table, other formats copy the polygons too"),
                                  QString::fromLatin1(kVectorOutputFilter)),
                      Optional(InputParam(QStringLiteral("Layer"), QStringLiteral("string"),
                                          QStringLiteral("Layer of the zones file; empty takes the first"))),
                      Optional(InputParam(QStringLiteral("Prefix"), QStringLiteral("string"),
                                          QStringLiteral("Put before the names of the figures' fields, e.g. dem_; empty puts nothing")))}),
        runZonalStatistics);
}

} // namespace HostRunner
