#include "host/GdalTestData.h"

#include "HostRunner/ExcuteAlgo.h"
#include "HostRunner/RunRecord.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <gtest/gtest.h>

#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <cstring>
#include <memory>

namespace GdalTestData {

namespace {

QByteArray name(const QString& path)
{
    return QFile::encodeName(path);
}

int epsgOf(const OGRSpatialReference* srs)
{
    if (!srs)
        return 0;
    OGRSpatialReference copy(*srs);
    if (!copy.GetAuthorityCode(nullptr))
        copy.AutoIdentifyEPSG();
    const char* code = copy.GetAuthorityCode(nullptr);
    return code ? std::atoi(code) : 0;
}

QString vectorDriver(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("gpkg"))
        return QStringLiteral("GPKG");
    if (suffix == QLatin1String("geojson") || suffix == QLatin1String("json"))
        return QStringLiteral("GeoJSON");
    return QStringLiteral("ESRI Shapefile");
}

struct Watched
{
    RunResult* result;
    const std::function<void(double)>* watch;
};

int onProgress(double percent, const char*, void* user)
{
    auto* w = static_cast<Watched*>(user);
    w->result->progress.push_back(percent);
    if (*w->watch)
        (*w->watch)(percent);
    return 1;
}

} // namespace

bool WriteRaster(const QString& path, const Grid& grid, const PixelFn& value)
{
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    CPLStringList options;
    for (const QString& option : grid.options)
        options.AddString(option.toUtf8().constData());
    GDALDatasetUniquePtr ds(driver->Create(name(path).constData(), grid.width, grid.height, grid.bands,
                                           GDALGetDataTypeByName(grid.dataType), options.List()));
    if (!ds)
        return false;
    double gt[6] = {grid.originX, grid.pixelSize, 0.0, grid.originY, 0.0, -grid.pixelSize};
    ds->SetGeoTransform(gt);
    if (grid.epsg) {
        OGRSpatialReference srs;
        srs.importFromEPSG(grid.epsg);
        ds->SetSpatialRef(&srs);
    }
    std::vector<double> row(static_cast<size_t>(grid.width));
    for (int b = 1; b <= grid.bands; ++b) {
        GDALRasterBand* band = ds->GetRasterBand(b);
        if (grid.hasNoData)
            band->SetNoDataValue(grid.noData);
        for (int y = 0; y < grid.height; ++y) {
            for (int x = 0; x < grid.width; ++x)
                row[static_cast<size_t>(x)] = value(b, x, y);
            if (band->RasterIO(GF_Write, 0, y, grid.width, 1, row.data(), grid.width, 1, GDT_Float64, 0, 0) != CE_None)
                return false;
        }
    }
    return true;
}

RasterInfo ReadRasterInfo(const QString& path)
{
    GDALAllRegister();
    RasterInfo info;
    GDALDatasetUniquePtr ds(GDALDataset::Open(name(path).constData(), GDAL_OF_RASTER));
    if (!ds || ds->GetRasterCount() == 0)
        return info;
    info.ok = true;
    info.driver = QString::fromLatin1(ds->GetDriver()->GetDescription());
    info.width = ds->GetRasterXSize();
    info.height = ds->GetRasterYSize();
    info.bands = ds->GetRasterCount();
    info.dataType = QString::fromLatin1(GDALGetDataTypeName(ds->GetRasterBand(1)->GetRasterDataType()));
    double gt[6];
    if (ds->GetGeoTransform(gt) == CE_None)
        info.geoTransform.assign(gt, gt + 6);
    info.epsg = epsgOf(ds->GetSpatialRef());
    int hasNoData = FALSE;
    info.noData = ds->GetRasterBand(1)->GetNoDataValue(&hasNoData);
    info.hasNoData = hasNoData != 0;
    info.compression = QString::fromLatin1(ds->GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE"));
    info.layout = QString::fromLatin1(ds->GetMetadataItem("LAYOUT", "IMAGE_STRUCTURE"));
    int blockHeight = 0;
    ds->GetRasterBand(1)->GetBlockSize(&info.blockWidth, &blockHeight);
    for (int i = 0; i < ds->GetRasterBand(1)->GetOverviewCount(); ++i)
        info.overviewWidths.push_back(ds->GetRasterBand(1)->GetOverview(i)->GetXSize());
    return info;
}

std::vector<double> ReadBand(const QString& path, int band)
{
    GDALAllRegister();
    GDALDatasetUniquePtr ds(GDALDataset::Open(name(path).constData(), GDAL_OF_RASTER));
    if (!ds || band < 1 || band > ds->GetRasterCount())
        return {};
    const int w = ds->GetRasterXSize(), h = ds->GetRasterYSize();
    std::vector<double> values(static_cast<size_t>(w) * static_cast<size_t>(h));
    if (ds->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, w, h, values.data(), w, h, GDT_Float64, 0, 0) != CE_None)
        return {};
    return values;
}

bool WriteVector(const QString& path, int epsg, const QList<Field>& fields, const std::vector<Feature>& features)
{
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(vectorDriver(path).toLatin1().constData());
    GDALDatasetUniquePtr ds(driver->Create(name(path).constData(), 0, 0, 0, GDT_Unknown, nullptr));
    if (!ds)
        return false;
    OGRSpatialReference srs;
    if (epsg) {
        srs.importFromEPSG(epsg);
        srs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    }
    // The geometry type of the first feature, so that points make a point layer.
    OGRwkbGeometryType type = wkbUnknown;
    if (!features.empty()) {
        OGRGeometry* g = nullptr;
        const QByteArray wkt = features.front().wkt.toLatin1();
        if (OGRGeometryFactory::createFromWkt(wkt.constData(), nullptr, &g) == OGRERR_NONE) {
            type = g->getGeometryType();
            OGRGeometryFactory::destroyGeometry(g);
        }
    }
    OGRLayer* layer = ds->CreateLayer(QFileInfo(path).completeBaseName().toUtf8().constData(), epsg ? &srs : nullptr, type, nullptr);
    if (!layer)
        return false;
    for (const Field& f : fields) {
        OGRFieldDefn defn(f.name.toUtf8().constData(), f.type == Field::Integer ? OFTInteger : OFTString);
        if (layer->CreateField(&defn) != OGRERR_NONE)
            return false;
    }
    for (const Feature& f : features) {
        OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer->GetLayerDefn()));
        for (auto it = f.attributes.begin(); it != f.attributes.end(); ++it) {
            const QByteArray field = it.key().toUtf8();
            if (it.value().type() == QVariant::Int)
                feature->SetField(field.constData(), it.value().toInt());
            else
                feature->SetField(field.constData(), it.value().toString().toUtf8().constData());
        }
        OGRGeometry* g = nullptr;
        const QByteArray wkt = f.wkt.toLatin1();
        if (OGRGeometryFactory::createFromWkt(wkt.constData(), nullptr, &g) != OGRERR_NONE)
            return false;
        feature->SetGeometryDirectly(g);
        if (layer->CreateFeature(feature.get()) != OGRERR_NONE)
            return false;
    }
    return true;
}

VectorInfo ReadVector(const QString& path)
{
    GDALAllRegister();
    VectorInfo info;
    GDALDatasetUniquePtr ds(GDALDataset::Open(name(path).constData(), GDAL_OF_VECTOR));
    if (!ds || ds->GetLayerCount() == 0)
        return info;
    OGRLayer* layer = ds->GetLayer(0);
    info.ok = true;
    info.driver = QString::fromLatin1(ds->GetDriver()->GetDescription());
    info.epsg = epsgOf(layer->GetSpatialRef());
    OGRFeatureDefn* defn = layer->GetLayerDefn();
    for (auto& feature : *layer) {
        Feature f;
        for (int i = 0; i < defn->GetFieldCount(); ++i) {
            const QString field = QString::fromUtf8(defn->GetFieldDefn(i)->GetNameRef());
            switch (defn->GetFieldDefn(i)->GetType()) {
            case OFTInteger:
            case OFTInteger64:
                f.attributes[field] = feature->GetFieldAsInteger(i);
                break;
            case OFTReal:
                f.attributes[field] = feature->GetFieldAsDouble(i);
                break;
            default:
                f.attributes[field] = QString::fromUtf8(feature->GetFieldAsString(i));
            }
        }
        if (const OGRGeometry* g = feature->GetGeometryRef()) {
            char* wkt = nullptr;
            g->exportToWkt(&wkt);
            f.wkt = QString::fromLatin1(wkt);
            CPLFree(wkt);
            if (OGR_GT_IsSurface(wkbFlatten(g->getGeometryType())) || wkbFlatten(g->getGeometryType()) == wkbMultiPolygon)
                f.area = OGR_G_Area(OGRGeometry::ToHandle(const_cast<OGRGeometry*>(g)));
        }
        info.features.push_back(f);
    }
    return info;
}

QString Box(double xmin, double ymin, double xmax, double ymax)
{
    return QStringLiteral("POLYGON ((%1 %2,%3 %2,%3 %4,%1 %4,%1 %2))")
        .arg(xmin, 0, 'f', 6).arg(ymin, 0, 'f', 6).arg(xmax, 0, 'f', 6).arg(ymax, 0, 'f', 6);
}

RunResult RunAlgorithm(const char* algorithm, const QJsonObject& params, const std::function<void(double)>& watch)
{
    RunResult result;
    Watched watched{&result, &watch};
    HostRunner::RunRecord record;
    std::memset(&record, 0, sizeof record);
    record.callback = &onProgress;
    record.userData = &watched;
    const QByteArray json = QJsonDocument(params).toJson(QJsonDocument::Compact);
    result.ok = HostRunner::ExcuteAlgo(algorithm, json.constData(), &record);
    result.code = record.errorCode;
    result.message = QString::fromUtf8(record.errorMessage);
    return result;
}

void ExpectFailures(const std::vector<BadInputCase>& cases, const QString& out, const QStringList& mustNotExist)
{
    for (BadInputCase c : cases) {
        SCOPED_TRACE(c.name);
        if (!c.params.contains("Out File"))
            c.params["Out File"] = out;
        const RunResult r = RunAlgorithm(c.algorithm, c.params);
        EXPECT_EQ(r.ok, 0);
        EXPECT_EQ(r.code, c.code);
        for (const QString& part : c.inMessage)
            EXPECT_TRUE(r.message.contains(part)) << r.message.toStdString() << " lacks " << part.toStdString();
        for (const QString& path : mustNotExist)
            EXPECT_FALSE(QFileInfo::exists(path)) << path.toStdString();
    }
}

int RunProgram(const QString& program, const QStringList& args, QByteArray* out)
{
    QProcess process;
    process.start(program, args);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    if (out)
        *out = process.readAllStandardOutput();
    return process.exitCode();
}

void ExpectSameAsReference(const QString& output, const QString& reference, Same how)
{
    if (how == Same::Bytes) {
        QFile a(output), b(reference);
        ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
        EXPECT_TRUE(a.readAll() == b.readAll()) << output.toStdString() << " differs from " << reference.toStdString();
        return;
    }
    if (how == Same::Features) {
        const VectorInfo a = ReadVector(output), b = ReadVector(reference);
        ASSERT_TRUE(a.ok && b.ok);
        EXPECT_EQ(a.epsg, b.epsg);
        ASSERT_EQ(a.features.size(), b.features.size());
        for (size_t i = 0; i < a.features.size(); ++i) {
            EXPECT_EQ(a.features[i].wkt, b.features[i].wkt) << i;
            EXPECT_EQ(a.features[i].attributes, b.features[i].attributes) << i;
        }
        return;
    }
    const RasterInfo a = ReadRasterInfo(output), b = ReadRasterInfo(reference);
    ASSERT_TRUE(a.ok && b.ok);
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    ASSERT_EQ(a.bands, b.bands);
    EXPECT_EQ(a.dataType, b.dataType);
    EXPECT_EQ(a.geoTransform, b.geoTransform);
    EXPECT_EQ(a.epsg, b.epsg);
    EXPECT_EQ(a.hasNoData, b.hasNoData);
    for (int band = 1; band <= a.bands; ++band) {
        const std::vector<double> va = ReadBand(output, band), vb = ReadBand(reference, band);
        ASSERT_EQ(va.size(), vb.size());
        size_t differ = 0;
        for (size_t i = 0; i < va.size(); ++i)
            differ += !(va[i] == vb[i] || (std::isnan(va[i]) && std::isnan(vb[i])));
        EXPECT_EQ(differ, 0u) << "band " << band;
    }
}

} // namespace GdalTestData
