// The algorithms built on GDAL's utilities, run in-process through the host's runner,
// against the GDAL program given the same options, on one square raster (4000 pixels
// a side, or the size given as the first argument). Each pair runs the two back to
// back; the figure is the median of the pairs' ratios. The raster calculator is
// measured the same way against gdal_calc.py on two inputs, reclassification against
// gdal_calc.py's nested where(), and the intersection of two layers of squares against
// ogr2ogr's SQLite dialect.
#include "BenchSupport.h"

#include "HostRunner/ExcuteAlgo.h"
#include "HostRunner/RunRecord.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr int kPairs = 3;

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Wall milliseconds of one in-process run; -1 if it failed.
double timeAlgorithm(const char* name, const QJsonObject& params)
{
    HostRunner::RunRecord record;
    std::memset(&record, 0, sizeof record);
    const QByteArray text = QJsonDocument(params).toJson(QJsonDocument::Compact);
    QElapsedTimer t;
    t.start();
    const int ok = HostRunner::ExcuteAlgo(name, text.constData(), &record);
    const double ms = t.nsecsElapsed() / 1e6;
    if (!ok)
        std::fprintf(stderr, "%s failed: %s\n", name, HostRunner::ExcuteAlgoMessage());
    return ok ? ms : -1;
}

bool writeRaster(const QString& path, int size, double phase)
{
    GDALDataset* ds = GetGDALDriverManager()->GetDriverByName("GTiff")->Create(path.toUtf8().constData(), size, size, 1,
                                                                               GDT_Float32, nullptr);
    if (!ds)
        return false;
    const double gt[6] = {500000, 10, 0, 4000000, 0, -10};
    ds->SetGeoTransform(const_cast<double*>(gt));
    OGRSpatialReference srs;
    srs.importFromEPSG(32633);
    ds->SetSpatialRef(&srs);
    std::vector<float> line(static_cast<size_t>(size));
    bool ok = true;
    for (int y = 0; y < size && ok; ++y) {
        for (int x = 0; x < size; ++x)
            line[size_t(x)] = float(100 + 20 * std::sin(x / 50.0 + phase) * std::cos(y / 40.0) + 0.01 * x);
        ok = ds->GetRasterBand(1)->RasterIO(GF_Write, 0, y, size, 1, line.data(), size, 1, GDT_Float32, 0, 0) == CE_None;
    }
    GDALClose(ds);
    return ok;
}

// A layer of count x count squares of 10 m, shifted by offset, each with its row and
// column; a shapefile or a GeoPackage by the extension.
bool writeSquares(const QString& path, int count, double offset)
{
    GDALDatasetUniquePtr ds(GetGDALDriverManager()->GetDriverByName(path.endsWith(".shp") ? "ESRI Shapefile" : "GPKG")->Create(path.toUtf8().constData(), 0, 0, 0,
                                                                                     GDT_Unknown, nullptr));
    if (!ds)
        return false;
    OGRSpatialReference srs;
    srs.importFromEPSG(32633);
    OGRLayer* layer = ds->CreateLayer(QFileInfo(path).completeBaseName().toUtf8().constData(), &srs, wkbPolygon, nullptr);
    OGRFieldDefn row("row", OFTInteger), column("col", OFTInteger);
    if (!layer || layer->CreateField(&row) != OGRERR_NONE || layer->CreateField(&column) != OGRERR_NONE)
        return false;
    const bool transaction = ds->StartTransaction() == OGRERR_NONE;
    bool ok = true;
    for (int y = 0; y < count && ok; ++y)
        for (int x = 0; x < count && ok; ++x) {
            const double x0 = 500000 + 10 * x + offset, y0 = 4000000 + 10 * y + offset;
            OGRLinearRing ring;
            ring.addPoint(x0, y0);
            ring.addPoint(x0 + 10, y0);
            ring.addPoint(x0 + 10, y0 + 10);
            ring.addPoint(x0, y0 + 10);
            ring.closeRings();
            OGRPolygon square;
            square.addRing(&ring);
            OGRFeature feature(layer->GetLayerDefn());
            feature.SetField(0, y);
            feature.SetField(1, x);
            feature.SetGeometry(&square);
            ok = layer->CreateFeature(&feature) == OGRERR_NONE;
        }
    return ok && (!transaction || ds->CommitTransaction() == OGRERR_NONE);
}

struct Pair
{
    const char* name;
    const char* algorithm;
    QJsonObject params;
    QString program;
    QStringList args;
    bool vector = false; // writes a GeoPackage, not a GeoTIFF
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    GDALAllRegister();
    const int size = argc > 1 ? std::max(16, std::atoi(argv[1])) : 4000;
    QTemporaryDir dir;
    const QString a = dir.filePath("a.tif"), b = dir.filePath("b.tif");
    if (!writeRaster(a, size, 0) || !writeRaster(b, size, 1))
        return 1;
    // 40 x 40 squares a layer for a 4000-pixel side: ogr2ogr's join tries every pair,
    // so larger layers only lengthen the run.
    const int squares = std::max(4, std::min(40, size / 100));
    // ogr2ogr reads a second file in its SQLite dialect only beside a first that is no
    // SQLite database itself.
    const QString left = dir.filePath("left.shp"), right = dir.filePath("right.gpkg");
    if (!writeSquares(left, squares, 0) || !writeSquares(right, squares, 5))
        return 1;
    const QString ours = dir.filePath("ours.tif"), theirs = dir.filePath("theirs.tif");
    const QString oursVector = dir.filePath("ours.gpkg"), theirsVector = dir.filePath("theirs.gpkg");
    const QString intersection = "SELECT ST_Intersection(a.geometry, b.geom) AS geometry, a.row AS input_row, a.col AS input_col, "
                                 "b.row AS method_row, b.col AS method_col FROM left a JOIN '" + right + "'.right b "
                                 "ON ST_Intersects(a.geometry, b.geom) WHERE ST_Dimension(ST_Intersection(a.geometry, b.geom)) = 2";
    const std::vector<Pair> pairs = {
        {"translate_deflate", "raster.translate", {{"In File", a}, {"Creation options", "COMPRESS=DEFLATE;TILED=YES"}},
         "gdal_translate", {"-q", "-co", "COMPRESS=DEFLATE", "-co", "TILED=YES", a, theirs}},
        {"warp_bilinear", "raster.warp", {{"In File", a}, {"Target SRS", "EPSG:32632"}, {"Resampling", "bilinear"}},
         "gdalwarp", {"-q", "-overwrite", "-t_srs", "EPSG:32632", "-r", "bilinear", a, theirs}},
        {"hillshade", "raster.hillshade", {{"In File", a}}, "gdaldem",
         {"hillshade", "-q", a, theirs, "-z", "1", "-s", "1", "-az", "315", "-alt", "45", "-b", "1", "-compute_edges"}},
        {"slope", "raster.slope", {{"In File", a}}, "gdaldem", {"slope", "-q", a, theirs, "-s", "1", "-b", "1", "-compute_edges"}},
        {"calculator", "raster.calculator", {{"In Files", a + ";" + b}, {"Expression", "(A - B) / (A + B)"}}, "/usr/bin/python3",
         {"/usr/bin/gdal_calc.py", "--quiet", "--overwrite", "-A", a, "-B", b, "--calc=(A-B)/(A+B)", "--type=Float32", "--outfile=" + theirs}},
        {"reclassify", "raster.reclassify", {{"In File", a}, {"Table", "0,90,1;90,110,2;110,200,3"}, {"Default", "0"}, {"NoData", "255"}, {"Data Type", "Byte"}},
         "/usr/bin/python3",
         {"/usr/bin/gdal_calc.py", "--quiet", "--overwrite", "-A", a, "--calc=where((A>=0)*(A<90),1,where((A>=90)*(A<110),2,where((A>=110)*(A<200),3,0)))",
          "--type=Byte", "--NoDataValue=255", "--outfile=" + theirs}},
        {"intersection", "vector.intersection", {{"In File", left}, {"Overlay File", right}}, "ogr2ogr",
         {"-dialect", "SQLite", "-sql", intersection, "-nlt", "PROMOTE_TO_MULTI", theirsVector, left}, true},
    };
    int status = 0;
    for (const Pair& p : pairs) {
        std::vector<double> inProcess, program, ratios;
        for (int i = 0; i < kPairs; ++i) {
            QFile::remove(ours);
            QFile::remove(theirs);
            QFile::remove(theirsVector);
            QJsonObject params = p.params;
            params["Out File"] = p.vector ? oursVector : ours;
            const double mine = timeAlgorithm(p.algorithm, params);
            const double tool = Bench::TimeProcess(p.program, p.args);
            if (mine < 0 || tool < 0) {
                std::fprintf(stderr, "%s: a run failed\n", p.name);
                status = 1;
                break;
            }
            inProcess.push_back(mine);
            program.push_back(tool);
            ratios.push_back(mine / tool);
        }
        if (ratios.empty())
            continue;
        Bench::Print(QByteArray(p.name) + "_in_process", median(inProcess), "ms");
        Bench::Print(QByteArray(p.name) + "_program", median(program), "ms");
        Bench::Print(QByteArray(p.name) + "_ratio", median(ratios), "x");
    }
    return status;
}
