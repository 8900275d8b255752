#include "host/GdalTestData.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/TestSupport.h"

#include <algorithm>
#include <cmath>
#include <map>

using namespace GdalTestData;

namespace {

class AnalysisAlgorithms : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // 30 x 20 pixels of 10 m; -5 is no-data on one diagonal.
        Grid g(30, 20);
        g.hasNoData = true;
        g.noData = -5;
        raster = Path("dem.tif");
        ASSERT_TRUE(WriteRaster(raster, g, [](int, int x, int y) { return x == y ? -5.0 : x * 1.5 + y * 0.25; }));
        // Zones apart from each other, one partly off the raster, one wholly off it.
        zones = Path("zones.shp");
        ASSERT_TRUE(WriteVector(zones, 32633, {{"name", Field::String}, {"id", Field::Integer}},
                                {{Box(500000, 3999900, 500100, 4000000), {{"name", "nw"}, {"id", 1}}},
                                 {"POLYGON ((500120 3999820,500290 3999820,500200 3999950,500120 3999820))", {{"name", "tri"}, {"id", 2}}},
                                 {Box(500250, 3999750, 500400, 3999815), {{"name", "edge"}, {"id", 3}}},
                                 {Box(600000, 3000000, 600100, 3000100), {{"name", "away"}, {"id", 4}}}}));
    }

    QString Path(const QString& name) const { return dir.filePath(name); }

    QTemporaryDir dir;
    QString raster, zones;
};

struct ZoneFigures
{
    qint64 count = 0;
    double sum = 0, min = INFINITY, max = -INFINITY;
};

} // namespace

// The figures of each zone are those of the pixels gdal_rasterize burns for it.
TEST_F(AnalysisAlgorithms, ZonalStatisticsCountThePixelsGdalRasterizeBurns)
{
    const QString burnt = Path("ids.tif");
    ASSERT_EQ(RunProgram("gdal_rasterize", {"-q", "-a", "id", "-init", "0", "-ot", "Int32", "-te", "500000", "3999800", "500300",
                                            "4000000", "-tr", "10", "10", zones, burnt}),
              0);
    const std::vector<double> ids = ReadBand(burnt, 1), values = ReadBand(raster, 1);
    ASSERT_EQ(ids.size(), values.size());
    std::map<int, ZoneFigures> expected;
    for (size_t i = 0; i < ids.size(); ++i) {
        if (ids[i] == 0 || values[i] == -5)
            continue;
        ZoneFigures& z = expected[int(ids[i])];
        ++z.count;
        z.sum += values[i];
        z.min = std::min(z.min, values[i]);
        z.max = std::max(z.max, values[i]);
    }
    ASSERT_EQ(expected.size(), 3u); // zone 4 lies off the raster

    // Zones in another spatial reference are brought onto the raster's grid.
    const QString geographic = Path("zones-wgs84.gpkg");
    ASSERT_EQ(RunProgram("ogr2ogr", {"-t_srs", "EPSG:4326", geographic, zones}), 0);
    struct Case { const char* out; const char* prefix; const char* layerOptions; bool geometry; QString zones; };
    const std::vector<Case> cases = {
        {"figures.csv", "", "SEPARATOR=SEMICOLON", false, zones},
        {"zones.gpkg", "dem_", "", true, zones},
        {"geographic.gpkg", "", "", true, geographic},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.out);
        const RunResult r = RunAlgorithm("raster.zonalStatistics", {{"In File", raster}, {"Zones File", c.zones}, {"Out File", Path(c.out)},
                                                                     {"Prefix", c.prefix}, {"Layer creation options", c.layerOptions}});
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        EXPECT_EQ(r.progress.back(), 100.0);
        const VectorInfo info = ReadVector(Path(c.out));
        const VectorInfo input = ReadVector(c.zones);
        ASSERT_EQ(info.features.size(), 4u);
        const QString p = QString::fromLatin1(c.prefix);
        for (size_t i = 0; i < info.features.size(); ++i) {
            SCOPED_TRACE(i);
            const QVariantMap& a = info.features[i].attributes;
            EXPECT_EQ(a.value("name").toString(), input.features[i].attributes.value("name").toString());
            EXPECT_EQ(info.features[i].wkt, c.geometry ? input.features[i].wkt : QString());
            const ZoneFigures z = expected[a.value("id").toInt()];
            EXPECT_EQ(a.value(p + "count").toLongLong(), z.count);
            if (z.count == 0) {
                EXPECT_EQ(a.value(p + "sum").toString(), c.geometry ? "0" : "");
                continue;
            }
            EXPECT_NEAR(a.value(p + "sum").toDouble(), z.sum, 1e-9);
            EXPECT_NEAR(a.value(p + "mean").toDouble(), z.sum / double(z.count), 1e-9);
            EXPECT_EQ(a.value(p + "min").toDouble(), z.min);
            EXPECT_EQ(a.value(p + "max").toDouble(), z.max);
        }
    }
    EXPECT_TRUE(TestSupport::ReadAll(Path("figures.csv")).startsWith("name;id;count;sum;mean;min;max\n"));
}

// The pieces and both sides' fields are those of ST_Intersection in ogr2ogr's SQLite
// dialect, keeping the pieces of the lower dimension of the two layers.
TEST_F(AnalysisAlgorithms, IntersectionMatchesOgr2ogrSqlite)
{
    const QString overlay = Path("overlay.shp"), points = Path("points.geojson");
    ASSERT_TRUE(WriteVector(overlay, 32633, {{"code", Field::Integer}, {"id", Field::Integer}},
                            {{Box(500050, 3999850, 500150, 3999950), {{"code", 7}, {"id", 9}}},
                             {Box(500100, 3999700, 500300, 3999830), {{"code", 8}, {"id", 10}}},
                             {Box(500400, 3999815, 500500, 3999900), {{"code", 5}, {"id", 11}}}}));
    ASSERT_TRUE(WriteVector(points, 32633, {{"label", Field::String}},
                            {{"POINT (500060 3999940)", {{"label", "p"}}}, {"POINT (500700 3999700)", {{"label", "q"}}},
                             {"POINT (500280 3999800)", {{"label", "r"}}}, {"POINT (500050 3999950)", {{"label", "s"}}}}));
    const QString areas = "SELECT ST_Intersection(a.geometry, b.geometry) AS geometry, a.name, a.id AS input_id, b.code, b.id AS method_id "
                          "FROM zones a JOIN '" + overlay + "'.overlay b ON ST_Intersects(a.geometry, b.geometry) "
                          "WHERE ST_Dimension(ST_Intersection(a.geometry, b.geometry)) = 2";
    const QString inAreas = "SELECT ST_Intersection(a.geometry, b.geometry) AS geometry, a.label, b.name, b.id "
                            "FROM points a JOIN '" + zones + "'.zones b ON ST_Intersects(a.geometry, b.geometry)";
    struct Case { const char* name; QString in, overlay, sql; QStringList more; size_t features; };
    const std::vector<Case> cases = {
        {"areas of both, a touching corner left out", zones, overlay, areas, {"-nlt", "PROMOTE_TO_MULTI"}, 4},
        {"points in areas", points, zones, inAreas, {}, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString out = Path("out.gpkg"), ref = Path("ref.gpkg");
        QFile::remove(ref);
        const RunResult r = RunAlgorithm("vector.intersection", {{"In File", c.in}, {"Overlay File", c.overlay}, {"Out File", out},
                                                                  {"Layer creation options", "SPATIAL_INDEX=NO"}});
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        ASSERT_EQ(RunProgram("ogr2ogr", QStringList{"-dialect", "SQLite", "-sql", c.sql, ref, c.in} + c.more), 0);
        ExpectSameAsReference(out, ref, Same::Features);
        EXPECT_EQ(ReadVector(out).features.size(), c.features);
    }
}
