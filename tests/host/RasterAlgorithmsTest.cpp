#include "host/GdalTestData.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/TestSupport.h"

#include <cmath>

using namespace GdalTestData;

namespace {

// Progress starts at 0, never goes back and ends at 100; a run over many lines also
// shows the work in between.
void ExpectProgress(const RunResult& r, bool inBetween)
{
    ASSERT_GE(r.progress.size(), 2u);
    EXPECT_EQ(r.progress.front(), 0.0);
    EXPECT_EQ(r.progress.back(), 100.0);
    EXPECT_TRUE(std::is_sorted(r.progress.begin(), r.progress.end()));
    if (inBetween) {
        EXPECT_TRUE(std::any_of(r.progress.begin(), r.progress.end(), [](double p) { return p > 0 && p < 100; }));
    }
}

class RasterAlgorithms : public ::testing::Test
{
protected:
    QString Path(const QString& name) const { return dir.filePath(name); }
    // A raster in dir with pixel value f(band, x, y).
    QString Make(const QString& name, Grid grid, const PixelFn& f)
    {
        const QString p = Path(name);
        EXPECT_TRUE(WriteRaster(p, grid, f)) << name.toStdString();
        return p;
    }
    QTemporaryDir dir;
};

// value = x + 100 y + 1000 band, so every pixel tells where it came from.
double Where(int b, int x, int y)
{
    return x + 100 * y + 1000 * b;
}

} // namespace

TEST_F(RasterAlgorithms, TranslateAndClipKeepBandsTypeAndWindow)
{
    const QString in = Make("in.tif", Grid(10, 10, 3, "UInt16"), Where);
    struct Case { const char* name; const char* algorithm; QJsonObject params; QString driver; int w, h; QString type; std::vector<int> from; int x0, y0; };
    const std::vector<Case> cases = {
        {"bands reordered, other format", "raster.translate", {{"Bands", "3,1"}, {"Out File", Path("a.img")}}, "HFA", 10, 10, "UInt16", {3, 1}, 0, 0},
        {"data type", "raster.translate", {{"Bands", "1"}, {"Data Type", "Float64"}, {"Out File", Path("b.tif")}}, "GTiff", 10, 10, "Float64", {1}, 0, 0},
        {"window", "raster.translate", {{"Extent", "500020,3999930,500050,3999980"}, {"Out File", Path("c.tif")}}, "GTiff", 3, 5, "UInt16", {1, 2, 3}, 2, 2},
        {"clip inside", "raster.clipExtent", {{"X Min", "500020"}, {"Y Min", "3999930"}, {"X Max", "500050"}, {"Y Max", "3999980"}, {"Out File", Path("d.tif")}},
         "GTiff", 3, 5, "UInt16", {1, 2, 3}, 2, 2},
        {"clip past the north-east corner", "raster.clipExtent", {{"X Min", "500070"}, {"Y Min", "3999960"}, {"X Max", "600000"}, {"Y Max", "4100000"}, {"Out File", Path("e.tif")}},
         "GTiff", 3, 4, "UInt16", {1, 2, 3}, 7, 0},
    };
    for (Case c : cases) {
        SCOPED_TRACE(c.name);
        c.params["In File"] = in;
        const RunResult r = RunAlgorithm(c.algorithm, c.params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        ExpectProgress(r, false);
        const QString out = c.params["Out File"].toString();
        const RasterInfo info = ReadRasterInfo(out);
        EXPECT_EQ(info.driver, c.driver);
        EXPECT_EQ(info.width, c.w);
        EXPECT_EQ(info.height, c.h);
        EXPECT_EQ(info.dataType, c.type);
        EXPECT_EQ(info.epsg, 32633);
        ASSERT_EQ(info.bands, int(c.from.size()));
        for (int b = 1; b <= info.bands; ++b)
            EXPECT_EQ(ReadBand(out, b)[0], Where(c.from[size_t(b - 1)], c.x0, c.y0)) << "band " << b;
    }
}

// Creation options reach the format whether a utility or a created file writes the
// raster, or a copy out of memory does (a cloud-optimised GeoTIFF).
TEST_F(RasterAlgorithms, CreationOptionsReachTheRasterOutput)
{
    const QString dem = Make("dem.tif", Grid(300, 300, 4), Where);
    struct Case { const char* algorithm; const char* options; const char* compression; const char* layout; };
    const std::vector<Case> cases = {
        {"raster.translate", "COMPRESS=DEFLATE;TILED=YES;BLOCKXSIZE=128;BLOCKYSIZE=128;NUM_THREADS=2", "DEFLATE", ""},
        {"raster.ndvi", "COG=YES;COMPRESS=LZW;BLOCKSIZE=128", "LZW", "COG"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.algorithm);
        const QString out = Path(QStringLiteral("out-%1.tif").arg(c.algorithm));
        const RunResult r = RunAlgorithm(c.algorithm, {{"In File", dem}, {"Out File", out}, {"Creation options", c.options}});
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        const RasterInfo info = ReadRasterInfo(out);
        EXPECT_EQ(info.compression, c.compression);
        EXPECT_EQ(info.layout, c.layout);
        EXPECT_EQ(info.blockWidth, 128);
    }
}

// Each algorithm built on a GDAL utility or on GDAL's analysis library writes what the
// GDAL program writes given the same options: byte for byte where GDAL writes
// deterministically.
TEST_F(RasterAlgorithms, GdalProgramsGiveTheSameContent)
{
    const auto hills = [](int, int x, int y) { return 100 + 10 * std::sin(x / 7.0) * std::cos(y / 5.0) + 0.5 * x; };
    const QString dem = Make("dem.tif", Grid(60, 50), hills);
    Grid left(30, 50), right(30, 50);
    right.originX += 300;
    const QString west = Make("west.tif", left, hills);
    const QString east = Make("east.tif", right, [&](int b, int x, int y) { return hills(b, x + 30, y); });
    // Over the seam, where the later tile of a mosaic wins.
    Grid seam(20, 50);
    seam.originX += 200;
    const QString middle = Make("middle.tif", seam, [](int, int x, int) { return 7 + x; });
    const QString image = Make("image.tif", Grid(60, 50, 3, "Byte"),
                               [](int b, int x, int y) { return x < 4 || y > 45 ? 3 + b : 60 + x + y; });
    // Without a spatial reference: how GDAL words one depends on what the process did before.
    Grid unreferenced(6, 5);
    unreferenced.epsg = 0;
    const QString plain = Make("plain.tif", unreferenced, hills);
    Grid classes(40, 30, 1, "Byte");
    classes.hasNoData = true;
    classes.noData = 0;
    // Blocks of classes with specks, and holes of no-data.
    const QString map = Make("classes.tif", classes, [](int, int x, int y) {
        if ((x * 7 + y * 3) % 23 == 0)
            return 9.0;
        if (x > 30 && y > 20)
            return 0.0;
        return double(1 + x / 10 + (y / 10) % 2);
    });
    const QString py = "/usr/bin/python3";
    const QString table = Path("colours.txt");
    ASSERT_TRUE(TestSupport::WriteAll(table, "90 0 0 255\n115 0 255 0\n140 255 0 0\nnv 0 0 0\n"));
    const QString cutline = Path("cut.gpkg");
    ASSERT_TRUE(WriteVector(cutline, 32633, {}, {{Box(500100, 3999600, 500450, 3999900), {}}}));
    const QString triangle = Path("triangle.shp");
    ASSERT_TRUE(WriteVector(triangle, 32633, {}, {{"POLYGON ((500020 3999640,500360 3999640,500020 3999970,500020 3999640))", {}}}));
    const QStringList dem1 = {"-b", "1", "-compute_edges"};
    struct Case { const char* algorithm; QJsonObject params; const char* out; QString program; QStringList args; Same same; };
    const std::vector<Case> cases = {
        {"raster.hillshade", {{"Z Factor", "2"}, {"Azimuth", "200"}}, "hs.tif", "gdaldem",
         QStringList{"hillshade", dem, "%ref", "-z", "2", "-s", "1", "-az", "200", "-alt", "45"} + dem1, Same::Bytes},
        {"raster.slope", {{"Units", "percent"}}, "slope.tif", "gdaldem", QStringList{"slope", dem, "%ref", "-s", "1", "-p"} + dem1, Same::Bytes},
        {"raster.aspect", {}, "aspect.tif", "gdaldem", QStringList{"aspect", dem, "%ref"} + dem1, Same::Bytes},
        {"raster.colorRelief", {{"Color Table", table}, {"Matching", "nearest"}, {"Alpha", "1"}}, "nearest.tif", "gdaldem",
         QStringList{"color-relief", dem, table, "%ref", "-nearest_color_entry", "-alpha"} + dem1, Same::Bytes},
        {"raster.tri", {{"Method", "Wilson"}}, "tri.tif", "gdaldem", QStringList{"TRI", dem, "%ref", "-alg", "Wilson"} + dem1, Same::Bytes},
        {"raster.tpi", {}, "tpi.tif", "gdaldem", QStringList{"TPI", dem, "%ref"} + dem1, Same::Bytes},
        {"raster.roughness", {{"Creation options", "COMPRESS=DEFLATE"}}, "rough.tif", "gdaldem",
         QStringList{"roughness", dem, "%ref"} + dem1 + QStringList{"-co", "COMPRESS=DEFLATE"}, Same::Bytes},
        {"raster.translate", {{"Additional options", "-scale 90 140 1 255 -ot Byte -outsize 30 25 -r average -a_nodata 0"}},
         "scaled.tif", "gdal_translate", {"-scale", "90", "140", "1", "255", "-ot", "Byte", "-outsize", "30", "25", "-r", "average",
                                           "-a_nodata", "0", dem, "%ref"}, Same::Bytes},
        {"raster.warp", {{"Target SRS", "4326"}, {"Resampling", "bilinear"}, {"Cutline", cutline}}, "warped.tif", "gdalwarp",
         {"-t_srs", "EPSG:4326", "-r", "bilinear", "-cutline", cutline, dem, "%ref"}, Same::Pixels},
        {"raster.clipByPolygon", {{"Mask File", triangle}}, "clipped.tif", "gdalwarp",
         {"-cutline", triangle, "-crop_to_cutline", "-dstnodata", "0", dem, "%ref"}, Same::Pixels},
        {"raster.resample", {{"Resolution", "25"}, {"Resampling", "average"}}, "coarse.tif", "gdalwarp",
         {"-tr", "25", "25", "-r", "average", dem, "%ref"}, Same::Bytes},
        {"raster.buildVrt", {{"In Files", west + ";" + east}}, "both.vrt", "gdalbuildvrt", {"-resolution", "average", "%ref", west, east}, Same::Pixels},
        {"raster.mosaic", {{"In Files", west + " ; " + middle + ";;" + east}}, "mosaic.tif", py,
         {"/usr/bin/gdal_merge.py", "-q", "-o", "%ref", west, middle, east}, Same::Pixels},
        {"raster.nearblack", {{"Color", "white"}, {"Additional options", "-setalpha"}}, "alpha.tif", "nearblack",
         {"-white", "-near", "15", "-setalpha", "-o", "%ref", image}, Same::Bytes},
        {"raster.info", {}, "info.json", "gdalinfo", {"-json", plain}, Same::Bytes},
        {"raster.info", {{"Additional options", "-nomd -norat"}}, "info.txt", "gdalinfo", {"-nomd", "-norat", plain}, Same::Bytes},
        {"raster.proximity", {{"In File", map}, {"Values", "9"}, {"Units", "GEO"}, {"Max Distance", "60"}}, "prox.tif", py,
         {"/usr/bin/gdal_proximity.py", "-q", map, "%ref", "-values", "9", "-distunits", "GEO", "-maxdist", "60", "-ot", "Float32"}, Same::Pixels},
        {"raster.sieve", {{"In File", map}, {"Threshold", "3"}, {"Connectedness", "8"}}, "sieve.tif", py,
         {"/usr/bin/gdal_sieve.py", "-q", "-st", "3", "-8", map, "%ref"}, Same::Pixels},
        {"raster.fillNoData", {{"In File", map}, {"Max Distance", "20"}, {"Smoothing", "1"}}, "filled.tif", py,
         {"/usr/bin/gdal_fillnodata.py", "-q", "-md", "20", "-si", "1", map, "%ref"}, Same::Pixels},
        {"raster.polygonize", {{"In File", map}, {"Connectedness", "8"}}, "polygons.gpkg", py,
         {"/usr/bin/gdal_polygonize.py", "-q", "-8", map, "%ref", "polygons", "value"}, Same::Features},
        {"raster.contour", {{"Interval", "5"}, {"Base", "2"}}, "lines.gpkg", "gdal_contour",
         {"-q", "-i", "5", "-off", "2", "-a", "elev", dem, "%ref"}, Same::Features},
        {"raster.contourPolygons", {{"Interval", "10"}}, "bands.gpkg", "gdal_contour",
         {"-q", "-p", "-i", "10", "-amin", "amin", "-amax", "amax", dem, "%ref"}, Same::Features},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.algorithm) + " " + c.out);
        QJsonObject params = c.params;
        if (!params.contains("In Files") && !params.contains("In File"))
            params["In File"] = QString(c.algorithm) == "raster.nearblack" ? image : QString(c.algorithm) == "raster.info" ? plain : dem;
        const QString out = Path(QString("out-") + c.out), ref = Path(QString("ref-") + c.out);
        params["Out File"] = out;
        const RunResult r = RunAlgorithm(c.algorithm, params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        if (c.program == "gdalwarp")
            ExpectProgress(r, true);
        QStringList args = c.args;
        args.replaceInStrings("%ref", ref);
        QByteArray printed;
        ASSERT_EQ(RunProgram(c.program, args, &printed), 0) << args.join(' ').toStdString();
        if (!args.contains(ref)) {
            ASSERT_TRUE(TestSupport::WriteAll(ref, printed));
        }
        ExpectSameAsReference(out, ref, c.same);
    }
    EXPECT_GT(ReadVector(Path("out-lines.gpkg")).features.size(), 3u);

    // Overviews as gdaladdo builds them, on a copy of the input.
    const QString copy = Path("ovr.tif"), ref = Path("ovr-ref.tif");
    const RunResult r = RunAlgorithm("raster.overviews", {{"In File", dem}, {"Out File", copy}, {"Levels", "2 4"}, {"Resampling", "average"}});
    ASSERT_EQ(r.ok, 1) << r.message.toStdString();
    ASSERT_EQ(RunProgram("gdal_translate", {"-q", dem, ref}), 0);
    ASSERT_EQ(RunProgram("gdaladdo", {"-q", "-r", "average", ref, "2", "4"}), 0);
    ExpectSameAsReference(copy, ref, Same::Pixels);
    EXPECT_EQ(ReadRasterInfo(copy).overviewWidths, (std::vector<int>{30, 15}));
    EXPECT_EQ(ReadRasterInfo(copy).overviewWidths, ReadRasterInfo(ref).overviewWidths);
    EXPECT_EQ(ReadBand(dem, 1), ReadBand(copy, 1));
}

// The calculator and the reclassification give what gdal_calc.py gives for the same
// expression (nested where() for the ranges, the first one that holds winning),
// bands, type and no-data; and an expression that does not read is refused naming
// the letters.
TEST_F(RasterAlgorithms, CalculatorAndReclassifyMatchGdalCalc)
{
    Grid g(70, 40, 2, "Float64");
    g.hasNoData = true;
    g.noData = -1;
    const QString a = Make("a.tif", g, [](int b, int x, int y) { return x == 3 && y == 5 ? -1 : 50 + b * x + 0.37 * y; });
    const QString b = Make("b.tif", g, [](int b, int x, int y) { return y == 7 ? -1 : 20 + 3.1 * b + 0.5 * std::sin(x * y); });
    struct Case { const char* name; const char* algorithm; QJsonObject params; QStringList calc; };
    const std::vector<Case> cases = {
        {"a normalised difference with no-data", "raster.calculator", {{"In Files", a + ";" + b}, {"Expression", "(A - B) / (A + B)"}, {"Data Type", "Float64"}, {"NoData", "-9999"}},
         {"-A", a, "-B", b, "--calc=(A-B)/(A+B)", "--type=Float64", "--NoDataValue=-9999"}},
        {"chosen bands into bytes", "raster.calculator", {{"In Files", a + ";" + b}, {"Bands", "2,1"}, {"Expression", "A > 100 && B < 23.5 ? 7 : 1"}, {"Data Type", "Byte"}, {"NoData", "0"}},
         {"-A", a, "--A_band=2", "-B", b, "--B_band=1", "--calc=where((A>100)*(B<23.5),7,1)", "--type=Byte", "--NoDataValue=0"}},
        {"functions of one input", "raster.calculator", {{"In Files", b}, {"Expression", "sqrt(abs(A)) + abs(A - 21)"}, {"Data Type", "Float64"}, {"NoData", "-5"}},
         {"-A", b, "--calc=sqrt(abs(A))+abs(A-21)", "--type=Float64", "--NoDataValue=-5"}},
        {"floats, no range is no-data, the first range wins", "raster.reclassify", {{"In File", a}, {"Table", "70,100,0.5;50,130,-2.25"}, {"NoData", "-1"}},
         {"-A", a, "--calc=where((A>=70)*(A<100),0.5,where((A>=50)*(A<130),-2.25,-1))", "--type=Float32", "--NoDataValue=-1"}},
        {"bytes with a default, compressed", "raster.reclassify", {{"In File", a}, {"Table", "0,60,1; 60,95.5,2;95.5,120,3"}, {"Default", "9"},
                                                                  {"NoData", "255"}, {"Data Type", "Byte"}, {"Creation options", "COMPRESS=DEFLATE"}},
         {"-A", a, "--calc=where((A>=0)*(A<60),1,where((A>=60)*(A<95.5),2,where((A>=95.5)*(A<120),3,9)))", "--type=Byte", "--NoDataValue=255"}},
    };
    const QString out = Path("calc.tif"), ref = Path("ref.tif");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QJsonObject params = c.params;
        QFile::remove(ref);
        params["Out File"] = out;
        const RunResult r = RunAlgorithm(c.algorithm, params);
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        ASSERT_EQ(RunProgram("/usr/bin/python3", QStringList{"/usr/bin/gdal_calc.py", "--quiet", "--outfile=" + ref} + c.calc), 0);
        ExpectSameAsReference(out, ref, Same::Pixels);
    }
    EXPECT_EQ(ReadRasterInfo(out).compression, "DEFLATE"); // as the last case asked
    const RunResult bad = RunAlgorithm("raster.calculator", {{"In Files", a + ";" + b}, {"Expression", "A + C"}, {"Out File", Path("bad.tif")}});
    EXPECT_EQ(bad.code, 20);
    EXPECT_TRUE(bad.message.contains("Expression 'A + C': Unexpected token \"C\"") && bad.message.contains("the inputs are A to B"))
        << bad.message.toStdString();
}


TEST_F(RasterAlgorithms, NdviFromChosenBandsWithNoData)
{
    const double none = -9999;
    Grid g(6, 5, 4, "UInt16");
    g.hasNoData = true; // 0 marks a missing reading
    const QString scene = Make("scene.tif", g, [](int b, int x, int y) {
        if (x == 0 && y == 0)
            return 0.0;
        return b == 3 ? 10.0 * (x + 1) : b == 4 ? 10.0 * (y + 1) : 7.0;
    });
    const QString pair = Make("pair.tif", Grid(2, 1, 2), [](int b, int x, int) { return x == 0 ? 0.0 : 5.0 * b; });
    struct Case { const char* name; QString in; const char* red; const char* nir; std::vector<double> expected; };
    std::vector<double> sceneNdvi;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            sceneNdvi.push_back(x == 0 && y == 0 ? none : (10.0 * (y + 1) - 10.0 * (x + 1)) / (10.0 * (x + y + 2)));
    const std::vector<Case> cases = {
        {"default bands, no-data", scene, "", "", sceneNdvi},
        {"bands 1 and 2, zero sum", pair, "1", "2", {none, 5.0 / 15.0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString out = Path("ndvi.tif");
        const RunResult r = RunAlgorithm("raster.ndvi", {{"In File", c.in}, {"Red Band", c.red}, {"NIR Band", c.nir}, {"Out File", out}});
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        const RasterInfo info = ReadRasterInfo(out);
        EXPECT_EQ(info.dataType, "Float32");
        EXPECT_EQ(info.noData, none);
        const std::vector<double> v = ReadBand(out, 1);
        ASSERT_EQ(v.size(), c.expected.size());
        for (size_t i = 0; i < v.size(); ++i)
            EXPECT_NEAR(v[i], c.expected[i], 1e-6) << "pixel " << i;
    }
}

TEST_F(RasterAlgorithms, BandStatisticsAreExactAndLeaveTheInputAlone)
{
    Grid g(4, 4, 2);
    g.hasNoData = true;
    const QString in = Make("in.tif", g, [](int b, int x, int y) { return b == 1 ? 1.0 + x + 4 * y : double(x); });
    const QString all = "band,valid_pixels,nodata_pixels,min,max,mean,stddev,sum\n"
                        "1,16,0,1,16,8.5,4.60977222865,136\n"
                        "2,12,4,1,3,2,0.816496580928,24\n";
    struct Case { const char* name; const char* band; QString expected; };
    const std::vector<Case> cases = {
        {"all bands", "", all},
        {"band 2", "2", all.section('\n', 0, 0) + '\n' + all.section('\n', 2, 2) + '\n'},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString out = Path("stats.csv");
        const RunResult r = RunAlgorithm("raster.bandStatistics", {{"In File", in}, {"Band", c.band}, {"Out File", out}});
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        EXPECT_EQ(QString::fromUtf8(TestSupport::ReadAll(out)), c.expected);
    }
    // Statistics asked of the information step land in its report, not beside the input either.
    ASSERT_EQ(RunAlgorithm("raster.info", {{"In File", in}, {"Out File", Path("info.json")}, {"Additional options", "-stats"}}).ok, 1);
    EXPECT_TRUE(TestSupport::ReadAll(Path("info.json")).contains("STATISTICS_MEAN"));
    EXPECT_FALSE(QFileInfo::exists(in + ".aux.xml"));
}

TEST_F(RasterAlgorithms, BadInputGivesCodeAndMessageAndNoOutput)
{
    const QString in = Make("in.tif", Grid(4, 4), Where);
    Grid bare(4, 4);
    bare.epsg = 0;
    const QString unreferenced = Make("bare.tif", bare, Where);
    const QString other = Make("other.tif", Grid(4, 4, 2), Where);
    const QString text = Path("notes.txt");
    TestSupport::WriteAll(text, "not a raster");
    const QString out = Path("out.tif");
    // Masks beside the raster, in its spatial reference and in degrees.
    const QString farMask = Path("far.shp");
    ASSERT_TRUE(WriteVector(farMask, 32633, {}, {{Box(500100, 3999800, 500140, 3999840), {}}}));
    const QString farInDegrees = Path("far.geojson");
    ASSERT_TRUE(WriteVector(farInDegrees, 4326, {}, {{Box(1, 1, 2, 2), {}}}));
    const QString counted = Path("counted.geojson");
    ASSERT_TRUE(WriteVector(counted, 32633, {{"count", Field::Integer}}, {{Box(500000, 3999900, 500100, 4000000), {{"count", 1}}}}));
    const std::vector<BadInputCase> cases = {
        {"missing file", "raster.translate", {{"In File", Path("none.tif")}}, 21, {"Cannot open raster", Path("none.tif")}},
        {"not a raster", "raster.slope", {{"In File", text}}, 21, {"Cannot open raster", text}},
        {"missing parameter", "raster.aspect", {}, 20, {"In File needs a value"}},
        {"band past the end", "raster.slope", {{"In File", in}, {"Band", "5"}}, 20, {"Band 5", "1 band"}},
        {"NIR band past the end", "raster.ndvi", {{"In File", in}, {"Red Band", "1"}, {"NIR Band", "9"}}, 20, {"NIR Band 9"}},
        {"band list with a word", "raster.translate", {{"In File", in}, {"Bands", "1,x"}}, 20, {"Bands", "1,x"}},
        {"not a number", "raster.hillshade", {{"In File", in}, {"Azimuth", "north"}}, 20, {"Azimuth", "north"}},
        {"unknown projection", "raster.warp", {{"In File", in}, {"Target SRS", "EPSG:999999"}}, 20, {"Target SRS", "EPSG:999999"}},
        {"no projection to warp from", "raster.warp", {{"In File", unreferenced}, {"Target SRS", "EPSG:4326"}}, 21, {unreferenced, "no spatial reference"}},
        {"unknown resampling", "raster.warp", {{"In File", in}, {"Target SRS", "EPSG:4326"}, {"Resampling", "best"}}, 20, {"Resampling", "best"}},
        {"extent outside", "raster.clipExtent", {{"In File", in}, {"X Min", "0"}, {"Y Min", "0"}, {"X Max", "1"}, {"Y Max", "1"}}, 20, {"does not overlap"}},
        {"mask beside the raster", "raster.clipByPolygon", {{"In File", in}, {"Mask File", farMask}}, 20, {"does not overlap", farMask}},
        {"mask far away in degrees", "raster.clipByPolygon", {{"In File", in}, {"Mask File", farInDegrees}}, 20, {"does not overlap"}},
        {"window outside", "raster.translate", {{"In File", in}, {"Extent", "0,0,1,1"}}, 20, {"does not overlap"}},
        {"extent upside down", "raster.clipExtent", {{"In File", in}, {"X Min", "2"}, {"Y Min", "0"}, {"X Max", "1"}, {"Y Max", "1"}}, 20, {"X Max"}},
        {"mosaic with a missing tile", "raster.mosaic", {{"In Files", in + ";" + Path("gone.tif")}}, 21, {Path("gone.tif")}},
        {"mosaic of unlike bands", "raster.mosaic", {{"In Files", in + ";" + other}}, 20, {other, "2 band(s)"}},
        {"mosaic of unlike projections", "raster.mosaic", {{"In Files", in + ";" + unreferenced}}, 20, {"spatial references differ"}},
        {"mask that is no vector", "raster.clipByPolygon", {{"In File", in}, {"Mask File", text}}, 21, {"Cannot open vector layer", text}},
        {"folder cannot be made", "raster.slope", {{"In File", in}, {"Out File", text + "/sub/out.tif"}}, 22, {"cannot create folder", text + "/sub"}},
        {"folder is a file", "raster.ndvi", {{"In File", other}, {"Red Band", "1"}, {"NIR Band", "2"}, {"Out File", text + "/x.tif"}}, 22, {"is not a folder"}},
        {"output is the input", "raster.translate", {{"In File", in}, {"Out File", in}}, 20, {"also an input"}},
        {"options the format refuses", "raster.translate", {{"In File", in}, {"Out File", Path("out.img")}, {"Creation options", "COMPRESS=LZW"}}, 20,
         {"Creation options: 'LZW' is an unexpected value for COMPRESS creation option of type boolean"}},
        {"format refuses the bands", "raster.translate", {{"In File", other}, {"Out File", Path("out.asc")}}, 23, {"out.asc", "band"}},
        {"calculator over unlike sizes", "raster.calculator", {{"In Files", in + ";" + Make("big.tif", Grid(5, 4), Where)}, {"Expression", "A + B"}},
         20, {"is 5 x 4 pixels", "the same size"}},
        {"calculator band past the end", "raster.calculator", {{"In Files", in + ";" + other}, {"Bands", "1,3"}, {"Expression", "A"}}, 20, {"Band 3 of B"}},
        {"colour table missing", "raster.colorRelief", {{"In File", in}, {"Color Table", Path("none.txt")}}, 21, {"colour table", Path("none.txt")}},
        {"contour interval zero", "raster.contour", {{"In File", in}, {"Interval", "0"}, {"Out File", Path("c.gpkg")}}, 20, {"Interval must be positive"}},
        {"cutline that is no vector", "raster.warp", {{"In File", in}, {"Target SRS", "EPSG:4326"}, {"Cutline", text}}, 21, {"Cannot open vector layer", text}},
        {"virtual raster of a missing file", "raster.buildVrt", {{"In Files", Path("gone.tif")}, {"Out File", Path("v.vrt")}}, 21, {Path("gone.tif")}},
        {"virtual raster as a GeoTIFF", "raster.buildVrt", {{"In Files", in}}, 20, {".tif is not a virtual raster format", ".vrt"}},
        {"report as a raster", "raster.info", {{"In File", in}}, 20, {".tif is not a report format", ".json, .txt"}},
        {"a range of two numbers", "raster.reclassify", {{"In File", in}, {"Table", "0,10,1;10,20"}}, 20, {"Table: '10,20' is not min,max,value"}},
        {"a range upside down", "raster.reclassify", {{"In File", in}, {"Table", "10,0,1"}}, 20, {"the minimum is not below the maximum"}},
        {"figures named like a field", "raster.zonalStatistics", {{"In File", in}, {"Zones File", counted}, {"Out File", Path("z.gpkg")}}, 20,
         {"Prefix: the zones already have a field 'count'"}},
        {"layers in two spatial references", "vector.intersection", {{"In File", farMask}, {"Overlay File", farInDegrees}, {"Out File", Path("i.gpkg")}}, 20,
         {"reproject first"}},
    };
    const QByteArray original = TestSupport::ReadAll(in);
    ExpectFailures(cases, out, {out, Path("out.asc"), Path("out.img"), Path("z.gpkg"), Path("i.gpkg")});
    EXPECT_EQ(TestSupport::ReadAll(in), original);
}
