#pragma once

// Small rasters and vector layers made at test time through GDAL, readers that give
// their content back, and a runner that drives an algorithm through ExcuteAlgo.

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <vector>

namespace GdalTestData {

// A north-up grid. Pixel (x, y) covers [originX + x*pixelSize, +pixelSize) eastwards
// and [originY - y*pixelSize, -pixelSize) southwards.
struct Grid
{
    Grid() = default;
    Grid(int w, int h, int b = 1, const char* type = "Float32") : width(w), height(h), bands(b), dataType(type) {}
    int width = 8;
    int height = 8;
    int bands = 1;
    const char* dataType = "Float32";
    double originX = 500000.0;
    double originY = 4000000.0;
    double pixelSize = 10.0;
    int epsg = 32633; // 0: no spatial reference
    bool hasNoData = false;
    double noData = 0.0;
    QStringList options; // GeoTIFF creation options, e.g. "COMPRESS=DEFLATE"
};

using PixelFn = std::function<double(int band, int x, int y)>;

// Writes a GeoTIFF whose band b (from 1) holds value(b, x, y).
bool WriteRaster(const QString& path, const Grid& grid, const PixelFn& value);

struct RasterInfo
{
    bool ok = false;
    QString driver;
    int width = 0;
    int height = 0;
    int bands = 0;
    QString dataType;
    std::vector<double> geoTransform; // six values
    int epsg = 0;                     // 0 when none or not identifiable
    bool hasNoData = false;
    double noData = 0.0;
    QString compression; // of the image structure: DEFLATE, LZW, ...; empty when none
    QString layout;      // COG for a cloud-optimised GeoTIFF
    int blockWidth = 0;  // of band 1
    std::vector<int> overviewWidths; // of band 1
};
RasterInfo ReadRasterInfo(const QString& path);
// Band values row by row; empty when the file or band does not open.
std::vector<double> ReadBand(const QString& path, int band);

struct Field
{
    enum Type { Integer, String };
    QString name;
    Type type = String;
};

struct Feature
{
    QString wkt;
    QVariantMap attributes; // by field name
    double area = 0.0;      // filled by ReadVector
};

// Writes a one-layer vector file in the format of its extension (.shp, .gpkg, .geojson).
bool WriteVector(const QString& path, int epsg, const QList<Field>& fields, const std::vector<Feature>& features);

struct VectorInfo
{
    bool ok = false;
    QString driver;
    int epsg = 0;
    std::vector<Feature> features;
};
VectorInfo ReadVector(const QString& path);

// Runs one of GDAL's programs (gdaldem, gdal_translate, ...) and waits for it; its
// exit code, -1 when it did not start or end. out gets its standard output.
int RunProgram(const QString& program, const QStringList& args, QByteArray* out = nullptr);

// What a reference comparison looks at: the files byte for byte, the rasters' size,
// georeferencing and every band's values, or the vector layers' features.
enum class Same { Bytes, Pixels, Features };
// Expects the output of an algorithm to equal the reference a GDAL program wrote.
void ExpectSameAsReference(const QString& output, const QString& reference, Same how);

// A rectangle polygon as WKT.
QString Box(double xmin, double ymin, double xmax, double ymax);

struct RunResult
{
    int ok = 0;
    int code = 0;
    QString message;
    std::vector<double> progress;
};
// Runs an algorithm through HostRunner::ExcuteAlgo with params (string values);
// watch, when given, is called at each progress report, while the run is going on.
RunResult RunAlgorithm(const char* algorithm, const QJsonObject& params,
                       const std::function<void(double percent)>& watch = {});

// A run that must fail: its code, and texts its message must contain.
struct BadInputCase
{
    const char* name;
    const char* algorithm;
    QJsonObject params; // "Out File" defaults to the out given to ExpectFailures
    int code;
    QStringList inMessage;
};
// Runs each case and checks that it fails as told and leaves none of mustNotExist.
void ExpectFailures(const std::vector<BadInputCase>& cases, const QString& out, const QStringList& mustNotExist);

} // namespace GdalTestData
