#include "host/GdalTestData.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/TestSupport.h"

#include <cmath>

using namespace GdalTestData;

namespace {

class VectorAlgorithms : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QList<Field> fields = {{"name", Field::String}, {"pop", Field::Integer}};
        towns = Path("towns.shp");
        ASSERT_TRUE(WriteVector(towns, 32633, fields,
                                {{"POINT (500000 4000000)", {{"name", "A"}, {"pop", 50}}},
                                 {"POINT (500100 4000000)", {{"name", "B"}, {"pop", 150}}},
                                 {"POINT (500200 4000100)", {{"name", "C"}, {"pop", 1200}}},
                                 {"POINT (500300 4000200)", {{"name", "D"}, {"pop", 90}}},
                                 {"POINT (500400 4000300)", {{"name", "E"}, {"pop", 300}}}}));
        halves = Path("halves.shp");
        ASSERT_TRUE(WriteVector(halves, 32633, {{"class", Field::Integer}},
                                {{Box(500000, 4000000, 500050, 4000100), {{"class", 3}}},
                                 {Box(500050, 4000000, 500100, 4000100), {{"class", 7}}}}));
    }

    QString Path(const QString& name) const { return dir.filePath(name); }

    QTemporaryDir dir;
    QString towns, halves;
};

} // namespace

TEST_F(VectorAlgorithms, BufferGrowsAndShrinksKeepingAttributes)
{
    const QString squares = Path("squares.shp");
    ASSERT_TRUE(WriteVector(squares, 32633, {{"name", Field::String}},
                            {{Box(500000, 4000000, 500010, 4000010), {{"name", "big"}}},
                             {Box(500100, 4000000, 500104, 4000004), {{"name", "small"}}}}));
    struct Case { const char* name; QString in; QJsonObject params; QString out; std::vector<QString> names; double area; double tolerance; };
    const std::vector<Case> cases = {
        {"round", towns, {{"Distance", "10"}}, Path("round.shp"), {"A", "B", "C", "D", "E"}, M_PI * 100, 0.01 * M_PI * 100},
        {"one segment per quarter", towns, {{"Distance", "10"}, {"Segments", "1"}}, Path("diamond.gpkg"), {"A", "B", "C", "D", "E"}, 200, 1e-6},
        {"shrinking, the small one vanishes", squares, {{"Distance", "-3"}}, Path("shrunk.geojson"), {"big"}, 16, 1e-6},
    };
    for (Case c : cases) {
        SCOPED_TRACE(c.name);
        c.params["In File"] = c.in;
        c.params["Out File"] = c.out;
        const RunResult r = RunAlgorithm("vector.buffer", c.params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        EXPECT_EQ(r.progress.back(), 100.0);
        const VectorInfo info = ReadVector(c.out);
        EXPECT_EQ(info.epsg, 32633);
        ASSERT_EQ(info.features.size(), c.names.size());
        for (size_t i = 0; i < c.names.size(); ++i) {
            EXPECT_EQ(info.features[i].attributes.value("name").toString(), c.names[i]);
            if (info.driver != "ESRI Shapefile") { // which cannot tell a polygon from a multi-polygon of one part
                EXPECT_TRUE(info.features[i].wkt.startsWith("MULTIPOLYGON")) << info.features[i].wkt.toStdString();
            }
            EXPECT_NEAR(info.features[i].area, c.area, c.tolerance);
        }
    }
}

TEST_F(VectorAlgorithms, RasterizeBurnsFieldsOrValues)
{
    const QString apart = Path("apart.shp");
    ASSERT_TRUE(WriteVector(apart, 32633, {}, {{Box(500000, 4000000, 500020, 4000020), {}}, {Box(500040, 4000040, 500060, 4000060), {}}}));
    struct Case { const char* name; QString in; QJsonObject params; QString out; QString driver; QString type; int size; std::vector<double> firstRow; int burnt; };
    const std::vector<Case> cases = {
        {"from a field", halves, {{"Attribute", "class"}}, Path("classes.tif"), "GTiff", "Float32", 10, {3, 3, 3, 3, 3, 7, 7, 7, 7, 7}, 100},
        {"a value as Byte", apart, {{"Burn Value", "9"}, {"NoData", "255"}, {"Data Type", "Byte"}}, Path("mask.tif"), "GTiff", "Byte", 6,
         {255, 255, 255, 255, 9, 9}, 8},
        // The grid format keeps no type: whole numbers read back as Int32.
        {"into a copy-only format", halves, {{"Attribute", "class"}, {"Data Type", "Int16"}}, Path("classes.asc"), "AAIGrid", "Int32", 10,
         {3, 3, 3, 3, 3, 7, 7, 7, 7, 7}, 100},
    };
    for (Case c : cases) {
        SCOPED_TRACE(c.name);
        c.params["In File"] = c.in;
        c.params["Out File"] = c.out;
        c.params["Resolution"] = "10";
        const RunResult r = RunAlgorithm("vector.rasterize", c.params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        EXPECT_EQ(r.progress.back(), 100.0);
        const RasterInfo info = ReadRasterInfo(c.out);
        EXPECT_EQ(info.driver, c.driver);
        EXPECT_EQ(info.dataType, c.type);
        EXPECT_EQ(info.width, c.size);
        EXPECT_EQ(info.height, c.size);
        ASSERT_EQ(info.geoTransform.size(), 6u);
        EXPECT_EQ(info.geoTransform[0], 500000.0);
        EXPECT_EQ(info.geoTransform[1], 10.0);
        const std::vector<double> v = ReadBand(c.out, 1);
        ASSERT_EQ(v.size(), size_t(c.size * c.size));
        EXPECT_EQ(std::vector<double>(v.begin(), v.begin() + c.size), c.firstRow);
        EXPECT_EQ(std::count_if(v.begin(), v.end(), [&](double x) { return !info.hasNoData || x != info.noData; }), c.burnt);
    }
}

TEST_F(VectorAlgorithms, BadInputGivesCodeAndMessageAndNoOutput)
{
    ASSERT_TRUE(WriteVector(Path("wgs.geojson"), 4326, {}, {{"POINT (15 36)", {}}}));
    const QString bare = Path("bare.shp");
    ASSERT_TRUE(WriteVector(bare, 0, {}, {{"POINT (1 2)", {}}}));
    const QString empty = Path("empty.gpkg");
    ASSERT_TRUE(WriteVector(empty, 32633, {}, {}));
    const QString raster = Path("grid.tif");
    ASSERT_TRUE(WriteRaster(raster, Grid(), [](int, int, int) { return 1.0; }));
    const QString out = Path("out.shp");
    const std::vector<BadInputCase> cases = {
        {"missing file", "vector.translate", {{"In File", Path("none.shp")}}, 21, {"Cannot open vector layer", Path("none.shp")}},
        {"a raster", "vector.buffer", {{"In File", raster}, {"Distance", "1"}}, 21, {"Cannot open vector layer", raster}},
        {"unknown layer", "vector.translate", {{"In File", towns}, {"Layer", "roads"}}, 20, {"roads", "towns"}},
        {"bad where syntax", "vector.attributeFilter", {{"In File", towns}, {"Where", "pop >>> 3"}}, 20, {"Where", "pop >>> 3", "name, pop"}},
        {"where on an unknown field", "vector.attributeFilter", {{"In File", towns}, {"Where", "height > 3"}}, 20, {"Where", "height > 3"}},
        {"unknown projection", "vector.translate", {{"In File", towns}, {"Target SRS", "not a crs"}}, 20, {"Target SRS", "not a crs"}},
        {"nothing to reproject from", "vector.translate", {{"In File", bare}, {"Target SRS", "EPSG:4326"}}, 21, {"no spatial reference"}},
        {"distance in words", "vector.buffer", {{"In File", towns}, {"Distance", "ten"}}, 20, {"Distance", "ten"}},
        {"no segments", "vector.buffer", {{"In File", towns}, {"Distance", "1"}, {"Segments", "0"}}, 20, {"Segments", "between 1"}},
        {"unknown field to burn", "vector.rasterize", {{"In File", halves}, {"Resolution", "10"}, {"Attribute", "height"}, {"Out File", Path("out.tif")}}, 20, {"height", "class"}},
        {"zero resolution", "vector.rasterize", {{"In File", halves}, {"Resolution", "0"}, {"Out File", Path("out.tif")}}, 20, {"Resolution"}},
        {"absurd resolution", "vector.rasterize", {{"In File", halves}, {"Resolution", "0.0001"}, {"Out File", Path("out.tif")}}, 20, {"coarser"}},
        {"unknown data type", "vector.rasterize", {{"In File", halves}, {"Resolution", "10"}, {"Data Type", "Float128"}, {"Out File", Path("out.tif")}}, 20, {"Data Type", "Float128"}},
        {"empty layer", "vector.rasterize", {{"In File", empty}, {"Resolution", "10"}, {"Out File", Path("out.tif")}}, 21, {"nothing to rasterize"}},
        {"folder cannot be made", "vector.buffer", {{"In File", towns}, {"Distance", "1"}, {"Out File", raster + "/sub/out.shp"}}, 22, {"cannot create folder", raster + "/sub"}},
        {"output is the input", "vector.translate", {{"In File", towns}, {"Out File", towns}}, 20, {"also an input"}},
        {"SQL that does not run", "vector.sql", {{"In File", towns}, {"SQL", "SELECT nothing FROM towns"}}, 20, {"SQL: the statement does not run", "nothing"}},
        {"dissolve by a missing field", "vector.dissolve", {{"In File", halves}, {"Field", "kind"}}, 20, {"no field 'kind'", "class"}},
        {"merge of unlike projections", "vector.merge", {{"In Files", towns + ";" + Path("wgs.geojson")}}, 20, {"spatial references differ"}},
        {"extent upside down", "vector.spatialFilter", {{"In File", towns}, {"Extent", "2,0,1,1"}}, 20, {"min below max"}},
    };
    const QByteArray original = TestSupport::ReadAll(towns);
    ExpectFailures(cases, out, {out, Path("out.tif")});
    EXPECT_EQ(TestSupport::ReadAll(towns), original);
    EXPECT_EQ(ReadVector(towns).features.size(), 5u);
}

// Layer creation options reach the format and the switches of a step built on
// ogr2ogr reach ogr2ogr's parser; CSV keeps its geometry unless they ask otherwise.
// A layer written again replaces the old one whole.
TEST_F(VectorAlgorithms, LayerOptionsAndSwitchesReachTheOutput)
{
    struct Case { const char* algorithm; QJsonObject params; const char* options; const char* out; QStringList in, notIn; };
    const std::vector<Case> cases = {
        {"vector.attributeFilter", {{"In File", towns}, {"Where", "pop > 100"}}, "WRITE_NAME=NO", "t.geojson", {"\"C\""}, {"\"name\": \"t", "\"A\""}},
        {"vector.buffer", {{"In File", towns}, {"Distance", "1"}}, "", "t.csv", {"WKT,name,pop", "\"MULTIPOLYGON (("}, {}},
        {"vector.translate", {{"In File", towns}}, "GEOMETRY=AS_XY;SEPARATOR=SEMICOLON", "t.csv", {"X;Y;name;pop", "500100;4000000;B;"}, {"POINT", "MULTIPOLYGON"}},
        {"vector.translate", {{"In File", towns}, {"Additional options", "-select pop -where \"name = 'E'\""}}, "", "t.geojson",
         {"\"pop\": 300"}, {"\"name\": \"E\"", "\"D\"", "\"C\""}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.algorithm) + " " + c.options + " " + c.out);
        QJsonObject params = c.params;
        params["Out File"] = Path(c.out);
        params["Layer creation options"] = c.options;
        const RunResult r = RunAlgorithm(c.algorithm, params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        const QByteArray text = TestSupport::ReadAll(Path(c.out));
        for (const QString& s : c.in)
            EXPECT_TRUE(text.contains(s.toUtf8())) << s.toStdString() << "\n" << text.left(600).constData();
        for (const QString& s : c.notIn)
            EXPECT_FALSE(text.contains(s.toUtf8())) << s.toStdString() << "\n" << text.left(600).constData();
    }
}

// Each algorithm gives the features ogr2ogr gives with the same options.
TEST_F(VectorAlgorithms, Ogr2ogrGivesTheSameFeatures)
{
    const QString parcels = Path("parcels.shp");
    ASSERT_TRUE(WriteVector(parcels, 32633, {{"class", Field::Integer}},
                            {{Box(500000, 4000000, 500050, 4000100), {{"class", 1}}},
                             {Box(500050, 4000000, 500100, 4000100), {{"class", 1}}},
                             {Box(500100, 4000000, 500160, 4000080), {{"class", 2}}}}));
    const QString more = Path("more.geojson");
    ASSERT_TRUE(WriteVector(more, 32633, {{"name", Field::String}}, {{"POINT (500500 4000500)", {{"name", "F"}}}}));
    const char* sql = "SELECT name, pop * 2 AS twice FROM towns WHERE pop > 100 ORDER BY pop";
    const QString centroids = "SELECT ST_Centroid(\"GEOMETRY\") AS geometry, \"class\" FROM \"parcels\"";
    const QString dissolve = "SELECT ST_Union(\"GEOMETRY\") AS geometry, \"class\" FROM \"parcels\" GROUP BY \"class\" ORDER BY \"class\"";
    struct Case { const char* algorithm; QJsonObject params; QStringList args; QStringList then; size_t features; };
    const std::vector<Case> cases = {
        {"vector.reproject", {{"In File", towns}, {"Target SRS", "EPSG:4326"}}, {"-t_srs", "EPSG:4326", "%ref", towns}, {}, 5},
        {"vector.translate", {{"In File", towns}, {"Target SRS", "EPSG:4326"}}, {"-t_srs", "EPSG:4326", "%ref", towns}, {}, 5},
        {"vector.attributeFilter", {{"In File", towns}, {"Where", "pop > 100"}}, {"-where", "pop > 100", "%ref", towns}, {}, 3},
        {"vector.sql", {{"In File", towns}, {"SQL", sql}}, {"-dialect", "SQLite", "-sql", sql, "%ref", towns}, {}, 3},
        {"vector.centroids", {{"In File", parcels}}, {"-dialect", "SQLite", "-sql", centroids, "%ref", parcels}, {}, 3},
        {"vector.dissolve", {{"In File", parcels}, {"Field", "class"}}, {"-dialect", "SQLite", "-sql", dissolve, "%ref", parcels}, {}, 2},
        {"vector.spatialFilter", {{"In File", towns}, {"Extent", "500050,3999990,500250,4000150"}},
         {"-spat", "500050", "3999990", "500250", "4000150", "%ref", towns}, {}, 2},
        {"vector.spatialFilter", {{"In File", parcels}, {"Extent", "500025 3999990 500120 4000050"}, {"Clip", "1"}},
         {"-spat", "500025", "3999990", "500120", "4000050", "-clipsrc", "spat_extent", "%ref", parcels}, {}, 3},
        {"vector.clipExtent", {{"In File", parcels}, {"Extent", "500025,3999990,500120,4000050"}},
         {"-clipsrc", "500025", "3999990", "500120", "4000050", "%ref", parcels}, {}, 3},
        {"vector.clipByPolygons", {{"In File", parcels}, {"Mask File", halves}}, {"-clipsrc", halves, "-clipsrclayer", "halves", "%ref", parcels}, {}, 2},
        {"vector.merge", {{"In Files", towns + ";" + more}}, {"-nlt", "PROMOTE_TO_MULTI", "-nln", "merged", "%ref", towns},
         {"-append", "-nlt", "PROMOTE_TO_MULTI", "-nln", "merged", "%ref", more}, 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.algorithm);
        QJsonObject params = c.params;
        const QString out = Path("out.gpkg"), ref = Path("ref.gpkg");
        QFile::remove(ref);
        params["Out File"] = out;
        const RunResult r = RunAlgorithm(c.algorithm, params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        for (QStringList args : {c.args, c.then}) {
            if (args.isEmpty())
                continue;
            args.replaceInStrings("%ref", ref);
            ASSERT_EQ(RunProgram("ogr2ogr", args), 0) << args.join(' ').toStdString();
        }
        ExpectSameAsReference(out, ref, Same::Features);
        EXPECT_EQ(ReadVector(out).features.size(), c.features);
    }
    // Points into a grid, as gdal_grid interpolates them.
    const QString grid = Path("grid.tif"), ref = Path("grid-ref.tif");
    const RunResult r = RunAlgorithm("vector.grid", {{"In File", towns}, {"Out File", grid}, {"Field", "pop"}, {"Width", "20"}, {"Height", "15"},
                                                     {"Additional options", "-txe 500000 500400 -tye 4000300 4000000"}});
    ASSERT_EQ(r.ok, 1) << r.message.toStdString();
    ASSERT_EQ(RunProgram("gdal_grid", {"-q", "-l", "towns", "-a", "invdist", "-outsize", "20", "15", "-ot", "Float64", "-zfield", "pop",
                                       "-txe", "500000", "500400", "-tye", "4000300", "4000000", towns, ref}), 0);
    ExpectSameAsReference(grid, ref, Same::Bytes);
}
