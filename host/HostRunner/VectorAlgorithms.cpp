#include "HostRunner/BuiltinAlgorithms.h"
#include "HostRunner/GdalSupport.h"

#include <QFile>
#include <QFileInfo>

#include <gdal_utils.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace HostRunner {

namespace {

using Plugin::AlgoConfig;
using Plugin::Param;

// Plain arrays, not QStrings: registration may run before this file's dynamic initialisers.
constexpr char kIn[] = "In File";
constexpr char kOut[] = "Out File";
constexpr char kLayer[] = "Layer";

// A raster as large as this is a wrong resolution, not a request.
constexpr double kMaxRasterSide = 100000.0;

struct VectorTranslateOptionsDeleter
{
    void operator()(GDALVectorTranslateOptions* o) const { GDALVectorTranslateOptionsFree(o); }
};
struct GridOptionsDeleter
{
    void operator()(GDALGridOptions* o) const { GDALGridOptionsFree(o); }
};
struct RasterizeOptionsDeleter
{
    void operator()(GDALRasterizeOptions* o) const { GDALRasterizeOptionsFree(o); }
};
using VectorTranslateOptions = std::unique_ptr<GDALVectorTranslateOptions, VectorTranslateOptionsDeleter>;
using RasterizeOptions = std::unique_ptr<GDALRasterizeOptions, RasterizeOptionsDeleter>;
using GridOptions = std::unique_ptr<GDALGridOptions, GridOptionsDeleter>;

AlgoConfig vectorConfig(const char* name, const char* displayText, const char* help, QList<Param> params)
{
    return MakeAlgoConfig("Vector", name, displayText, help, std::move(params));
}

Param inVector(const char* description = "Vector layer to read")
{
    return InputParam(kIn, QStringLiteral("file"), QString::fromUtf8(description), QString::fromLatin1(kVectorInputFilter));
}

Param outVector(const char* description)
{
    return OutputParam(kOut, QStringLiteral("file"), QString::fromUtf8(description), QString::fromLatin1(kVectorOutputFilter));
}

Param layerParam()
{
    return Optional(InputParam(kLayer, QStringLiteral("string"), QStringLiteral("Layer to read; empty takes the first")));
}

Param value(const char* name, const char* type, const char* description, const char* defaultValue = nullptr)
{
    Param p = InputParam(QString::fromLatin1(name), QString::fromLatin1(type), QString::fromUtf8(description));
    return defaultValue ? WithDefault(p, QString::fromLatin1(defaultValue)) : p;
}

QString layerName(OGRLayer& layer)
{
    return QString::fromUtf8(layer.GetName());
}

QStringList fieldNames(OGRLayer& layer)
{
    QStringList names;
    OGRFeatureDefn* defn = layer.GetLayerDefn();
    for (int i = 0; i < defn->GetFieldCount(); ++i)
        names << QString::fromUtf8(defn->GetFieldDefn(i)->GetNameRef());
    return names;
}

QByteArray wktOf(const OGRSpatialReference& srs)
{
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2018", nullptr};
    srs.exportToWkt(&text, options);
    const QByteArray wkt(text ? text : "");
    CPLFree(text);
    return wkt;
}

// Copies one layer of source into the output parameter with GDALVectorTranslate and
// args (format, layer options and the layer's name added; no name when args hold
// an SQL statement, whose result is the layer).
bool vectorTranslateInto(GdalJob& job, GDALDataset& source, OGRLayer& layer, ToolArgs args, const QString& what,
                         bool byName = true)
{
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    const QString& out = output->Path();
    const QString& driver = output->Driver();
    args << "-f" << driver;
    const CPLStringList layerOptions = LayerOptionsFor(job, driver);
    for (int i = 0; i < layerOptions.Count(); ++i)
        args << "-lco" << layerOptions[i];
    args << job.Switches();
    if (byName)
        args << QByteArray(layer.GetName());
    VectorTranslateOptions options(GDALVectorTranslateOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("%1: invalid options").arg(what));
    GdalProgress progress(job, what);
    GDALVectorTranslateOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    GDALDatasetH sourceHandle = GDALDataset::ToHandle(&source);
    int usageError = FALSE;
    const QByteArray name = QFile::encodeName(output->WritePath());
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(
        GDALVectorTranslate(name.constData(), nullptr, 1, &sourceHandle, options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("%1 into %2 failed").arg(what, out));
    return job.CloseOutput(result, out);
}

// ---------------------------------------------------------------------------------

// Opens the input layer in path (the one the layer parameter names, or the
// first); null, with the job failed, when it can't. src keeps the layer alive.
OGRLayer* openLayer(GdalJob& job, const QString& path, GDALDatasetUniquePtr& src)
{
    src = job.OpenVector(path);
    return src ? job.Layer(*src, path, kLayer) : nullptr;
}

bool runTranslate(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    ToolArgs args;
    if (job.Has(QStringLiteral("Target SRS"))) {
        OGRSpatialReference target;
        if (!job.SpatialRef(QStringLiteral("Target SRS"), &target))
            return false;
        if (!layer->GetSpatialRef())
            return job.Fail(kCannotOpenInput, QStringLiteral("Layer %1 of %2 has no spatial reference, so it cannot be reprojected")
                                                  .arg(layerName(*layer), in));
        args << "-t_srs" << wktOf(target);
    }
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Converting %1").arg(layerName(*layer)));
}

bool runAttributeFilter(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    // Try the clause here first: the converter would report a bad one less clearly.
    const QString where = job.Text(QStringLiteral("Where"));
    const QByteArray clause = where.toUtf8();
    if (layer->SetAttributeFilter(clause.constData()) != OGRERR_NONE)
        return job.FailGdal(kBadParameter, QStringLiteral("Where: invalid filter '%1' for layer %2 (fields: %3)")
                                               .arg(where, layerName(*layer), fieldNames(*layer).join(QLatin1String(", "))));
    layer->SetAttributeFilter(nullptr);
    ToolArgs args;
    args << "-where" << clause;
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Filtering %1").arg(layerName(*layer)));
}

bool runBuffer(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    double distance = 0;
    int segments = 8;
    if (!job.Double(QStringLiteral("Distance"), &distance) || !job.Int(QStringLiteral("Segments"), &segments, 1, 1000))
        return false;
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    GDALDatasetUniquePtr ds = CreateVectorOutput(job, *output);
    if (!ds)
        return false;
    const QString& out = output->Path();
    // Multi-polygons throughout: a buffer may split or merge parts, and some formats
    // refuse a multi-polygon in a polygon layer.
    std::vector<int> fieldMap;
    OGRLayer* target = CreateLayerLike(job, *ds, *output, *layer, wkbMultiPolygon, &fieldMap);
    if (!target)
        return false;

    const bool transaction = ds->StartTransaction() == OGRERR_NONE; // GeoPackage is slow without one
    const GIntBig total = std::max<GIntBig>(1, layer->GetFeatureCount());
    GdalProgress progress(job, QStringLiteral("Buffering %1").arg(layerName(*layer)), 0.0, 95.0);
    GIntBig done = 0;
    layer->ResetReading();
    for (OGRFeatureUniquePtr feature(layer->GetNextFeature()); feature; feature.reset(layer->GetNextFeature())) {
        progress.Report(double(++done) / double(total));
        const OGRGeometry* geometry = feature->GetGeometryRef();
        if (!geometry || geometry->IsEmpty())
            continue;
        std::unique_ptr<OGRGeometry> buffered(geometry->Buffer(distance, segments));
        if (!buffered)
            return job.FailGdal(kProcessingFailed, QStringLiteral("Cannot buffer feature %1 of %2").arg(feature->GetFID()).arg(in));
        if (buffered->IsEmpty())
            continue; // shrunk away by a negative distance
        OGRFeatureUniquePtr result(OGRFeature::CreateFeature(target->GetLayerDefn()));
        result->SetFrom(feature.get(), fieldMap.data(), TRUE);
        result->SetGeometryDirectly(OGRGeometryFactory::forceToMultiPolygon(buffered.release()));
        if (target->CreateFeature(result.get()) != OGRERR_NONE)
            return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write feature %1 to %2").arg(feature->GetFID()).arg(out));
    }
    if (transaction && ds->CommitTransaction() != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(out));
    return job.CloseOutput(ds, out);
}

bool runRasterize(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    double resolution = 0, noData = 0;
    GDALDataType type = GDT_Unknown;
    if (!job.Double(QStringLiteral("Resolution"), &resolution) || !job.Double(QStringLiteral("NoData"), &noData)
        || !job.DataType(QStringLiteral("Data Type"), &type))
        return false;
    if (resolution <= 0)
        return job.Fail(kBadParameter, QStringLiteral("Resolution must be positive, not %1").arg(resolution));

    ToolArgs args;
    const QString attribute = job.Text(QStringLiteral("Attribute"));
    if (!attribute.isEmpty()) {
        if (layer->GetLayerDefn()->GetFieldIndex(attribute.toUtf8().constData()) < 0)
            return job.Fail(kBadParameter, QStringLiteral("Attribute: no field '%1' in layer %2 (fields: %3)")
                                               .arg(attribute, layerName(*layer), fieldNames(*layer).join(QLatin1String(", "))));
        args << "-a" << attribute;
    } else {
        double burn = 1;
        if (!job.Double(QStringLiteral("Burn Value"), &burn))
            return false;
        args << "-burn" << burn;
    }
    OGREnvelope extent;
    if (layer->GetFeatureCount() == 0 || layer->GetExtent(&extent) != OGRERR_NONE)
        return job.Fail(kCannotOpenInput, QStringLiteral("Layer %1 of %2 holds nothing to rasterize").arg(layerName(*layer), in));
    // A whole number of pixels from the layer's west and north edges; GDAL's own
    // choice would add half a pixel all round.
    const double columns = std::max(1.0, std::ceil((extent.MaxX - extent.MinX) / resolution));
    const double rows = std::max(1.0, std::ceil((extent.MaxY - extent.MinY) / resolution));
    if (columns > kMaxRasterSide || rows > kMaxRasterSide)
        return job.Fail(kBadParameter, QStringLiteral("Resolution %1 would make a raster of %2 x %3 pixels; choose a coarser one")
                                           .arg(resolution).arg(columns, 0, 'f', 0).arg(rows, 0, 'f', 0));

    RasterTarget target;
    if (!target.Prepare(job, kOut))
        return false;
    args << "-l" << QByteArray(layer->GetName()) << "-te" << extent.MinX << extent.MaxY - rows * resolution
         << extent.MinX + columns * resolution << extent.MaxY << "-tr" << resolution << resolution << "-a_nodata" << noData
         << "-init" << noData << "-ot" << GDALGetDataTypeName(type);
    target.AddFormatAndSwitches(job, args);
    RasterizeOptions options(GDALRasterizeOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("Rasterize: invalid options"));
    GdalProgress progress(job, QStringLiteral("Rasterizing %1").arg(layerName(*layer)), 0.0, 90.0);
    GDALRasterizeOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(
        GDALRasterize(target.ToolPath().constData(), nullptr, GDALDataset::ToHandle(src.get()), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Rasterizing %1 into %2 failed").arg(in, target.Path()));
    return target.Commit(job, std::move(result));
}

// An SQL identifier, quoted for the SQLite dialect.
QByteArray quotedName(const QByteArray& name)
{
    return '"' + QByteArray(name).replace('"', "\"\"") + '"';
}

// The geometry column of layer as the SQLite dialect names it.
QByteArray geometryColumn(OGRLayer& layer)
{
    const char* name = layer.GetGeometryColumn();
    return quotedName(name && *name ? QByteArray(name) : QByteArray("GEOMETRY"));
}

// Writes the result of statement (SQLite dialect) over layer into the output, as a
// layer named after the output.
bool sqlInto(GdalJob& job, GDALDataset& source, OGRLayer& layer, const QByteArray& statement, const QString& what)
{
    ToolArgs args;
    args << "-dialect" << "SQLite" << "-sql" << statement << "-nln"
         << QFileInfo(job.Text(kOut)).completeBaseName();
    return vectorTranslateInto(job, source, layer, std::move(args), what, false);
}

bool runReproject(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    OGRSpatialReference target;
    if (!job.SpatialRef(QStringLiteral("Target SRS"), &target))
        return false;
    if (!layer->GetSpatialRef())
        return job.Fail(kCannotOpenInput, QStringLiteral("Layer %1 of %2 has no spatial reference, so it cannot be reprojected")
                                              .arg(layerName(*layer), in));
    ToolArgs args;
    args << "-t_srs" << wktOf(target);
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Reprojecting %1").arg(layerName(*layer)));
}

bool runSql(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    // Try the statement here first: the converter would only say that it failed.
    const QByteArray statement = job.Text(QStringLiteral("SQL")).toUtf8();
    const int failures = job.Errors().FailureCount();
    OGRLayer* result = src->ExecuteSQL(statement.constData(), nullptr, "SQLite");
    if (!result || job.Errors().FailureCount() > failures) {
        if (result)
            src->ReleaseResultSet(result);
        return job.FailGdal(kBadParameter, QStringLiteral("SQL: the statement does not run over %1 (layers: %2)")
                                               .arg(in, layerName(*layer)));
    }
    src->ReleaseResultSet(result);
    return sqlInto(job, *src, *layer, statement, QStringLiteral("Querying %1").arg(layerName(*layer)));
}

bool runCentroids(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    QByteArray columns;
    OGRFeatureDefn* defn = layer->GetLayerDefn();
    for (int i = 0; i < defn->GetFieldCount(); ++i)
        columns += ", " + quotedName(defn->GetFieldDefn(i)->GetNameRef());
    const QByteArray statement = "SELECT ST_Centroid(" + geometryColumn(*layer) + ") AS geometry" + columns + " FROM " +
                                 quotedName(layer->GetName());
    return sqlInto(job, *src, *layer, statement, QStringLiteral("Centroids of %1").arg(layerName(*layer)));
}

bool runDissolve(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    QByteArray statement = "SELECT ST_Union(" + geometryColumn(*layer) + ") AS geometry";
    const QString field = job.Text(QStringLiteral("Field"));
    if (!field.isEmpty()) {
        if (layer->GetLayerDefn()->GetFieldIndex(field.toUtf8().constData()) < 0)
            return job.Fail(kBadParameter, QStringLiteral("Field: no field '%1' in layer %2 (fields: %3)")
                                               .arg(field, layerName(*layer), fieldNames(*layer).join(QLatin1String(", "))));
        const QByteArray column = quotedName(field.toUtf8());
        statement += ", " + column + " FROM " + quotedName(layer->GetName()) + " GROUP BY " + column + " ORDER BY " + column;
    } else {
        statement += " FROM " + quotedName(layer->GetName());
    }
    return sqlInto(job, *src, *layer, statement, QStringLiteral("Dissolving %1").arg(layerName(*layer)));
}

bool runSpatialFilter(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    std::vector<double> e;
    if (!job.Doubles(QStringLiteral("Extent"), 4, &e))
        return false;
    if (e[0] >= e[2] || e[1] >= e[3])
        return job.Fail(kBadParameter, QStringLiteral("Extent must be xmin,ymin,xmax,ymax with min below max"));
    ToolArgs args;
    args << "-spat" << e[0] << e[1] << e[2] << e[3];
    if (job.Text(QStringLiteral("Clip")) == QLatin1String("1"))
        args << "-clipsrc" << "spat_extent";
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Filtering %1").arg(layerName(*layer)));
}

bool runClipExtent(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    std::vector<double> e;
    if (!job.Doubles(QStringLiteral("Extent"), 4, &e))
        return false;
    if (e[0] >= e[2] || e[1] >= e[3])
        return job.Fail(kBadParameter, QStringLiteral("Extent must be xmin,ymin,xmax,ymax with min below max"));
    ToolArgs args;
    args << "-clipsrc" << e[0] << e[1] << e[2] << e[3];
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Clipping %1").arg(layerName(*layer)));
}

bool runClipByPolygons(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    const QString maskPath = job.Text(QStringLiteral("Mask File"));
    GDALDatasetUniquePtr mask = job.OpenVector(maskPath); // guards it against the output too
    if (!mask)
        return false;
    if (mask->GetLayerCount() == 0)
        return job.Fail(kCannotOpenInput, QStringLiteral("%1 holds no vector layer").arg(maskPath));
    ToolArgs args;
    args << "-clipsrc" << QFile::encodeName(maskPath) << "-clipsrclayer" << QByteArray(mask->GetLayer(0)->GetName());
    return vectorTranslateInto(job, *src, *layer, std::move(args), QStringLiteral("Clipping %1").arg(layerName(*layer)));
}

bool runGrid(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    QString algorithm;
    int width = 0, height = 0;
    GDALDataType type = GDT_Unknown;
    if (!job.OneOf(QStringLiteral("Method"), {"invdist", "average", "nearest", "linear"}, &algorithm)
        || !job.Int(QStringLiteral("Width"), &width, 1, int(kMaxRasterSide)) || !job.Int(QStringLiteral("Height"), &height, 1, int(kMaxRasterSide))
        || !job.DataType(QStringLiteral("Data Type"), &type))
        return false;
    ToolArgs args;
    args << "-l" << QByteArray(layer->GetName()) << "-a" << algorithm << "-outsize" << double(width) << double(height)
         << "-ot" << GDALGetDataTypeName(type);
    const QString field = job.Text(QStringLiteral("Field"));
    if (!field.isEmpty()) {
        if (layer->GetLayerDefn()->GetFieldIndex(field.toUtf8().constData()) < 0)
            return job.Fail(kBadParameter, QStringLiteral("Field: no field '%1' in layer %2 (fields: %3)")
                                               .arg(field, layerName(*layer), fieldNames(*layer).join(QLatin1String(", "))));
        args << "-zfield" << field;
    }
    RasterTarget target;
    if (!target.Prepare(job, kOut))
        return false;
    target.AddFormatAndSwitches(job, args);
    GridOptions options(GDALGridOptionsNew(args.Argv(), nullptr));
    if (!options)
        return job.FailGdal(kBadParameter, QStringLiteral("Grid: invalid options"));
    GdalProgress progress(job, QStringLiteral("Interpolating %1").arg(layerName(*layer)), 0.0, 90.0);
    GDALGridOptionsSetProgress(options.get(), &GdalProgress::Function, &progress);
    int usageError = FALSE;
    GDALDatasetUniquePtr result(GDALDataset::FromHandle(
        GDALGrid(target.ToolPath().constData(), GDALDataset::ToHandle(src.get()), options.get(), &usageError)));
    if (!result)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Interpolating %1 into %2 failed").arg(in, target.Path()));
    return target.Commit(job, std::move(result));
}

bool runMerge(GdalJob& job)
{
    const QStringList paths = SplitPaths(job.Text(QStringLiteral("In Files")));
    if (paths.isEmpty())
        return job.Fail(kBadParameter, QStringLiteral("In Files lists no vector layer"));
    std::vector<GDALDatasetUniquePtr> sources;
    std::vector<OGRLayer*> layers;
    for (const QString& path : paths) {
        GDALDatasetUniquePtr ds = job.OpenVector(path);
        if (!ds)
            return false;
        if (ds->GetLayerCount() == 0)
            return job.Fail(kCannotOpenInput, QStringLiteral("%1 holds no vector layer").arg(path));
        OGRLayer* layer = ds->GetLayer(0);
        if (!layers.empty()) {
            const OGRSpatialReference* a = layers.front()->GetSpatialRef();
            const OGRSpatialReference* b = layer->GetSpatialRef();
            if ((a == nullptr) != (b == nullptr) || (a && !a->IsSame(b)))
                return job.Fail(kBadParameter, QStringLiteral("Cannot merge %1 with %2: their spatial references differ; reproject first")
                                                   .arg(path, paths.front()));
        }
        layers.push_back(layer);
        sources.push_back(std::move(ds));
    }
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    const QString& out = output->Path();
    const QByteArray name = QFileInfo(out).completeBaseName().toUtf8();
    GDALDatasetH target = nullptr;
    GdalProgress progress(job, QStringLiteral("Merging %1 layers").arg(paths.size()));
    for (size_t i = 0; i < layers.size(); ++i) {
        ToolArgs args;
        if (i == 0) {
            args << "-f" << output->Driver();
            const CPLStringList layerOptions = LayerOptionsFor(job, output->Driver());
            for (int o = 0; o < layerOptions.Count(); ++o)
                args << "-lco" << layerOptions[o];
            // Every part's geometries go into one layer: its type must take them all.
            args << "-nlt" << "PROMOTE_TO_MULTI";
        } else {
            args << "-append" << "-nlt" << "PROMOTE_TO_MULTI";
        }
        args << "-nln" << name << job.Switches() << QByteArray(layers[i]->GetName());
        VectorTranslateOptions options(GDALVectorTranslateOptionsNew(args.Argv(), nullptr));
        if (!options)
            return job.FailGdal(kBadParameter, QStringLiteral("Merge: invalid options"));
        GDALDatasetH sourceHandle = GDALDataset::ToHandle(sources[i].get());
        int usageError = FALSE;
        const QByteArray path = QFile::encodeName(output->WritePath());
        GDALDatasetH result = GDALVectorTranslate(target ? nullptr : path.constData(), target, 1, &sourceHandle, options.get(), &usageError);
        if (!result) {
            if (target)
                GDALClose(target);
            return job.FailGdal(kProcessingFailed, QStringLiteral("Merging %1 into %2 failed").arg(paths[int(i)], out));
        }
        target = result;
        progress.Report(double(i + 1) / double(layers.size()));
    }
    GDALDatasetUniquePtr merged(GDALDataset::FromHandle(target));
    return job.CloseOutput(merged, out);
}

// The dimension of a layer's geometries: 0 points, 1 lines, 2 areas; -1 when mixed
// or unknown.
int dimensionOf(OGRwkbGeometryType type)
{
    type = wkbFlatten(type);
    if (type == wkbPoint || type == wkbMultiPoint)
        return 0;
    if (OGR_GT_IsCurve(type) || OGR_GT_IsSubClassOf(type, wkbMultiCurve))
        return 1;
    if (OGR_GT_IsSurface(type) || OGR_GT_IsSubClassOf(type, wkbMultiSurface))
        return 2;
    return -1;
}

bool runIntersection(GdalJob& job)
{
    const QString in = job.Text(kIn);
    GDALDatasetUniquePtr src;
    OGRLayer* layer = openLayer(job, in, src);
    if (!layer)
        return false;
    const QString overlayPath = job.Text(QStringLiteral("Overlay File"));
    GDALDatasetUniquePtr overlaySource = job.OpenVector(overlayPath);
    if (!overlaySource)
        return false;
    OGRLayer* overlay = job.Layer(*overlaySource, overlayPath, QStringLiteral("Overlay Layer"));
    if (!overlay)
        return false;
    const OGRSpatialReference* a = layer->GetSpatialRef();
    const OGRSpatialReference* b = overlay->GetSpatialRef();
    if ((a == nullptr) != (b == nullptr) || (a && !a->IsSame(b)))
        return job.Fail(kBadParameter, QStringLiteral("Cannot intersect %1 with %2: their spatial references differ; reproject first")
                                           .arg(in, overlayPath));
    const OutputFile* output = job.PrepareOutput(kOut, OutputKind::Vector);
    if (!output)
        return false;
    GDALDatasetUniquePtr ds = CreateVectorOutput(job, *output);
    if (!ds)
        return false;
    const QString& out = output->Path();
    // A typed layer keeps only the pieces of the lower dimension of the two (two
    // areas give areas, not the lines where they merely touch); mixed input keeps all.
    // Lines and areas are written as multi-part; GDAL leaves points as they come, so
    // points stay single where the point side is.
    const int da = dimensionOf(layer->GetGeomType()), db = dimensionOf(overlay->GetGeomType());
    const bool singlePoints = (da != 0 || wkbFlatten(layer->GetGeomType()) == wkbPoint)
                              && (db != 0 || wkbFlatten(overlay->GetGeomType()) == wkbPoint);
    const OGRwkbGeometryType types[] = {singlePoints ? wkbPoint : wkbMultiPoint, wkbMultiLineString, wkbMultiPolygon};
    const OGRwkbGeometryType type = da < 0 || db < 0 ? wkbUnknown : types[std::min(da, db)];
    OGRLayer* target = ds->CreateLayer(QFileInfo(out).completeBaseName().toUtf8().constData(), layer->GetSpatialRef(), type,
                                       LayerOptionsFor(job, output->Driver()).List());
    if (!target)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot create layer in %1").arg(out));
    // Fields of both sides; a name on both gets input_ and method_ in front.
    CPLStringList options;
    options.SetNameValue("PROMOTE_TO_MULTI", type == wkbUnknown ? "NO" : "YES");
    const bool transaction = ds->StartTransaction() == OGRERR_NONE; // GeoPackage is slow without one
    GdalProgress progress(job, QStringLiteral("Intersecting %1 with %2").arg(layerName(*layer), layerName(*overlay)), 0.0, 95.0);
    if (layer->Intersection(overlay, target, options.List(), &GdalProgress::Function, &progress) != OGRERR_NONE)
        return job.FailGdal(kProcessingFailed, QStringLiteral("Intersecting %1 with %2 failed").arg(in, overlayPath));
    if (transaction && ds->CommitTransaction() != OGRERR_NONE)
        return job.FailGdal(kCannotWriteOutput, QStringLiteral("Cannot write %1").arg(out));
    return job.CloseOutput(ds, out);
}

} // namespace

void RegisterVectorAlgorithms()
{
    RegisterGdalAlgorithm(
        vectorConfig("vector.translate", "Convert vector layer",
                     "Copies a vector layer into the format of the output's extension, optionally reprojecting it.",
                     {inVector(), outVector("Converted layer; the extension picks the format (.shp, .gpkg, .geojson, .csv)"),
                      Optional(InputParam(QStringLiteral("Target SRS"), QStringLiteral("spatialReference"),
                                          QStringLiteral("Spatial reference to reproject into; empty keeps the layer's"))),
                      layerParam()}),
        runTranslate, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.attributeFilter", "Select by attribute",
                     "Copies the features of a vector layer that match an SQL where clause.",
                     {inVector(),
                      InputParam(QStringLiteral("Where"), QStringLiteral("string"),
                                 QStringLiteral("SQL where clause on the layer's fields, e.g. population > 1000 AND type = 'city'")),
                      outVector("Matching features"), layerParam()}),
        runAttributeFilter, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.buffer", "Buffer",
                     "Replaces every geometry of a vector layer by the area within a distance of it, keeping attributes.",
                     {inVector(),
                      value("Distance", "float", "Buffer distance in layer units; negative shrinks polygons, which may vanish"),
                      outVector("Buffered polygons"),
                      value("Segments", "int", "Segments per quarter circle", "8"), layerParam()}),
        runBuffer);

    RegisterGdalAlgorithm(
        vectorConfig("vector.rasterize", "Rasterize",
                     "Burns the features of a vector layer into a new raster covering the layer, from a field or a fixed value.",
                     {inVector(),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Raster to create; the extension picks the format"),
                                  QString::fromLatin1(kRasterOutputFilter)),
                      value("Resolution", "float", "Pixel size in layer units"),
                      Optional(InputParam(QStringLiteral("Attribute"), QStringLiteral("string"),
                                          QStringLiteral("Numeric field to burn; empty burns Burn Value"))),
                      value("Burn Value", "float", "Value burnt where there is no Attribute", "1"),
                      value("NoData", "float", "Value of pixels no feature covers", "0"),
                      value("Data Type", "string", "Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64", "Float32"),
                      layerParam()}),
        runRasterize, GdalTool::Rasterize);

    RegisterGdalAlgorithm(
        vectorConfig("vector.reproject", "Reproject vector layer", "Reprojects a vector layer into another spatial reference.",
                     {inVector("Vector layer to reproject; it must have a spatial reference"),
                      InputParam(QStringLiteral("Target SRS"), QStringLiteral("spatialReference"),
                                 QStringLiteral("Spatial reference to reproject into: EPSG code (EPSG:4326), WKT or PROJ string")),
                      outVector("Reprojected layer"), layerParam()}),
        runReproject, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.sql", "Execute SQL",
                     "Writes the result of an SQL statement over a vector layer, in the SQLite dialect with its spatial functions.",
                     {inVector(),
                      InputParam(QStringLiteral("SQL"), QStringLiteral("string"),
                                 QStringLiteral("Statement naming the layer as its table, e.g. SELECT name, ST_Buffer(geometry, 10) "
                                                "AS geometry FROM towns WHERE pop > 1000")),
                      outVector("Result of the statement"), layerParam()}),
        runSql, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.centroids", "Centroids", "Replaces every geometry of a vector layer by its centroid, keeping attributes.",
                     {inVector(), outVector("Points"), layerParam()}),
        runCentroids, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.dissolve", "Dissolve",
                     "Merges the geometries of a vector layer into one, or into one per value of a field.",
                     {inVector(), outVector("Dissolved geometries"),
                      Optional(InputParam(QStringLiteral("Field"), QStringLiteral("string"),
                                          QStringLiteral("Field whose equal values are merged; empty merges everything"))),
                      layerParam()}),
        runDissolve, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.spatialFilter", "Select by extent",
                     "Copies the features of a vector layer that intersect a rectangle, optionally cut to it.",
                     {inVector(),
                      InputParam(QStringLiteral("Extent"), QStringLiteral("string"),
                                 QStringLiteral("Rectangle as xmin,ymin,xmax,ymax in the layer's coordinates")),
                      outVector("Features inside"),
                      WithDefault(value("Clip", "int", "1 cuts the geometries to the rectangle"), QStringLiteral("0")),
                      layerParam()}),
        runSpatialFilter, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.clipExtent", "Clip vector layer by extent",
                     "Cuts the geometries of a vector layer to a rectangle; features outside it are dropped.",
                     {inVector(),
                      InputParam(QStringLiteral("Extent"), QStringLiteral("string"),
                                 QStringLiteral("Rectangle as xmin,ymin,xmax,ymax in the layer's coordinates")),
                      outVector("Clipped features"), layerParam()}),
        runClipExtent, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.clipByPolygons", "Clip vector layer by polygons",
                     "Cuts the geometries of a vector layer to the polygons of another; features outside them are dropped.",
                     {inVector(),
                      InputParam(QStringLiteral("Mask File"), QStringLiteral("file"),
                                 QStringLiteral("Vector file whose first layer holds the polygons to keep"),
                                 QString::fromLatin1(kVectorInputFilter)),
                      outVector("Clipped features"), layerParam()}),
        runClipByPolygons, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.grid", "Interpolate points to a grid",
                     "Interpolates the values of points into a raster covering them, as gdal_grid does.",
                     {inVector("Points"),
                      OutputParam(kOut, QStringLiteral("file"), QStringLiteral("Raster to create; the extension picks the format"),
                                  QString::fromLatin1(kRasterOutputFilter)),
                      Optional(InputParam(QStringLiteral("Field"), QStringLiteral("string"),
                                          QStringLiteral("Numeric field to interpolate; empty takes the points' Z"))),
                      value("Method", "string", "invdist (inverse distance), average, nearest or linear", "invdist"),
                      value("Width", "int", "Columns of the raster", "256"),
                      value("Height", "int", "Rows of the raster", "256"),
                      value("Data Type", "string", "Byte, UInt16, Int16, UInt32, Int32, Float32 or Float64", "Float64"),
                      layerParam()}),
        runGrid, GdalTool::Grid);

    RegisterGdalAlgorithm(
        vectorConfig("vector.merge", "Merge vector layers",
                     "Copies the first layer of several files into one layer; fields are matched by name.",
                     {InputParam(QStringLiteral("In Files"), QStringLiteral("multiFile"),
                                 QStringLiteral("Vector files with the same spatial reference, separated by ';'"),
                                 QString::fromLatin1(kVectorInputFilter)),
                      outVector("Merged layer")}),
        runMerge, GdalTool::VectorTranslate);

    RegisterGdalAlgorithm(
        vectorConfig("vector.intersection", "Intersection",
                     "Cuts the features of two vector layers to where they overlap, each piece carrying the fields of both.",
                     {inVector(),
                      InputParam(QStringLiteral("Overlay File"), QStringLiteral("file"),
                                 QStringLiteral("Vector layer to intersect with, in the same spatial reference"),
                                 QString::fromLatin1(kVectorInputFilter)),
                      outVector("One feature per overlapping pair, of the lower dimension of the two; a field name both "
                                "layers have gets input_ and method_ in front"),
                      layerParam(),
                      Optional(InputParam(QStringLiteral("Overlay Layer"), QStringLiteral("string"),
                                          QStringLiteral("Layer of the overlay file; empty takes the first")))}),
        runIntersection);
}

} // namespace HostRunner
