#include "host/GdalTestData.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "support/TestSupport.h"

#include <gdal_priv.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <map>
#include <thread>

using namespace GdalTestData;
using TestSupport::ReadAll;

namespace {

class StepReliability : public ::testing::Test
{
protected:
    QString Path(const QString& name) const { return dir.filePath(name); }
    // A 64 x 64 elevation model stored as options say.
    QString Dem(const QString& name, const QStringList& options = {})
    {
        Grid g(64, 64);
        g.options = options;
        EXPECT_TRUE(WriteRaster(Path(name), g, [](int, int x, int y) { return double(x + 2 * y); }));
        return Path(name);
    }
    // The folder's entries, hidden ones (a partial output) included, with their bytes.
    static std::map<QString, QByteArray> Snapshot(const QString& folder)
    {
        std::map<QString, QByteArray> files;
        for (const QString& name : QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
            files[name] = ReadAll(QDir(folder).filePath(name));
        return files;
    }
    QTemporaryDir dir;
};

// Keeps the first half of a file, as an interrupted copy does.
void CutInHalf(const QString& path)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite) && f.resize(f.size() / 2));
}

// Inverts every byte of one strip (block row) of a GeoTIFF's first band.
void FlipStrip(const QString& path, int row)
{
    QByteArray offset, size;
    {
        GDALDatasetUniquePtr ds(GDALDataset::Open(QFile::encodeName(path).constData(), GDAL_OF_RASTER));
        ASSERT_TRUE(ds);
        const QByteArray key = "_0_" + QByteArray::number(row);
        offset = ds->GetRasterBand(1)->GetMetadataItem("BLOCK_OFFSET" + key, "TIFF");
        size = ds->GetRasterBand(1)->GetMetadataItem("BLOCK_SIZE" + key, "TIFF");
    }
    QFile f(path);
    ASSERT_TRUE(size.toLongLong() > 0 && f.open(QIODevice::ReadWrite) && f.seek(offset.toLongLong()));
    QByteArray bytes = f.read(size.toLongLong());
    for (char& c : bytes)
        c = char(~c);
    ASSERT_TRUE(f.seek(offset.toLongLong()) && f.write(bytes) == bytes.size());
}

// Makes folder unwritable, or writable again. Permission bits do not stop root,
// as on a build machine; an immutable folder does.
bool lockFolder(const QString& folder, bool lock)
{
    if (geteuid() != 0)
        return QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | (lock ? QFile::Permissions() : QFile::WriteOwner));
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd < 0)
        return false;
    int flags = 0;
    bool ok = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = lock ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
    ok = ok && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(fd);
    return ok;
}

} // namespace

TEST_F(StepReliability, UnreadableDataFailsWithGdalsReasonAndLeavesOutputsAlone)
{
    const QString truncated = Dem("truncated.tif", {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"});
    CutInHalf(truncated);
    const QString flipped = Dem("flipped.tif", {"COMPRESS=DEFLATE", "BLOCKYSIZE=8"});
    FlipStrip(flipped, 3);
    const QString shapes = Path("shapes.shp");
    std::vector<Feature> squares;
    for (int i = 0; i < 8; ++i)
        squares.push_back({Box(10 * i, 0, 10 * i + 5, 5), {}});
    ASSERT_TRUE(WriteVector(shapes, 32633, {}, squares));
    CutInHalf(shapes);
    // An earlier good output, which a failed run must not touch.
    const QString out = Path("out");
    ASSERT_EQ(RunAlgorithm("raster.slope", {{"In File", Dem("good.tif")}, {"Out File", out + "/kept.tif"}}).ok, 1);
    const auto before = Snapshot(out);

    const std::vector<BadInputCase> cases = {
        {"hillshade of a truncated file", "raster.hillshade", {{"In File", truncated}, {"Out File", out + "/kept.tif"}}, 23, {"Read error"}},
        {"slope of a truncated file", "raster.slope", {{"In File", truncated}, {"Out File", out + "/new.tif"}}, 23, {"Read error"}},
        {"hillshade of a bit-flipped file", "raster.hillshade", {{"In File", flipped}, {"Out File", out + "/new.png"}}, 23, {"Decod"}},
        {"slope of a bit-flipped file", "raster.slope", {{"In File", flipped}, {"Out File", out + "/kept.tif"}}, 23, {"Decod"}},
        {"buffer of a truncated shapefile", "vector.buffer", {{"In File", shapes}, {"Distance", "1"}, {"Out File", out + "/new.shp"}}, 23, {"fread"}},
        {"copy of a truncated shapefile", "vector.translate", {{"In File", shapes}, {"Out File", out + "/new.gpkg"}}, 23, {"fread"}},
    };
    // Also with GDAL decoding on worker threads of its own, which report elsewhere.
    for (const char* threads : {"", "4"}) {
        SCOPED_TRACE(std::string("GDAL threads: ") + threads);
        CPLSetConfigOption("GDAL_NUM_THREADS", *threads ? threads : nullptr);
        ExpectFailures(cases, QString(), {});
        EXPECT_EQ(Snapshot(out), before);
    }
    CPLSetConfigOption("GDAL_NUM_THREADS", nullptr);
}

// Runs side by side each report their own error, ours or GDAL's, not a neighbour's.
// Plain threads, whose join ThreadSanitizer sees, unlike Qt's internal locking.
TEST_F(StepReliability, ConcurrentStepsEachSeeTheirOwnErrors)
{
    const QString good = Dem("good.tif");
    const QString truncated = Dem("truncated.tif", {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"});
    CutInHalf(truncated);
    std::vector<RunResult> results(9);
    std::vector<std::thread> threads;
    for (int i = 0; i < 9; ++i) {
        const QString missing = Path(QStringLiteral("missing-%1.tif").arg(i));
        const QJsonObject params{{"In File", i % 3 == 0 ? good : i % 3 == 1 ? missing : truncated},
                                 {"Out File", Path(QStringLiteral("shade-%1.tif").arg(i))}};
        threads.emplace_back([params, &result = results[size_t(i)]] { result = RunAlgorithm("raster.hillshade", params); });
    }
    for (std::thread& t : threads)
        t.join();
    for (int i = 0; i < 9; ++i) {
        SCOPED_TRACE(i);
        const QString message = results[size_t(i)].message;
        EXPECT_EQ(results[size_t(i)].ok, i % 3 == 0 ? 1 : 0) << message.toStdString();
        EXPECT_EQ(message.endsWith(QStringLiteral("missing-%1.tif: no such file").arg(i)), i % 3 == 1) << message.toStdString();
        EXPECT_EQ(message.contains("Read error"), i % 3 == 2) << message.toStdString();
        EXPECT_EQ(QFileInfo::exists(Path(QStringLiteral("shade-%1.tif").arg(i))), i % 3 == 0);
    }
}

TEST_F(StepReliability, FilesThatAreNoOutputsOfTheStepStayUntouched)
{
    const QString dem = Dem("dem.tif");
    const QString towns = Path("towns.shp");
    ASSERT_TRUE(WriteVector(towns, 32633, {}, {{"POINT (1 2)", {}}}));
    ASSERT_TRUE(TestSupport::WriteAll(Path("model.apc"), "<model/>"));
    ASSERT_TRUE(TestSupport::WriteAll(Path("notes.txt"), "notes"));
    ASSERT_TRUE(TestSupport::WriteAll(Path("fake.tif"), "not a raster"));
    ASSERT_TRUE(QDir(dir.path()).mkdir("folder.shp"));
    const QString locked = Path("locked");
    ASSERT_TRUE(QDir().mkdir(locked));
    const bool lockable = lockFolder(locked, true);
    std::vector<BadInputCase> cases = {
        {"model as a raster", "raster.slope", {{"In File", dem}, {"Out File", Path("model.apc")}}, 20, {".apc", ".tif, .tiff, .img, .asc, .png"}},
        {"model as a table", "raster.bandStatistics", {{"In File", dem}, {"Out File", Path("model.apc")}}, 20, {".apc", ".csv, .txt"}},
        {"text as a layer", "vector.translate", {{"In File", towns}, {"Out File", Path("notes.txt")}}, 20, {".txt", ".shp, .gpkg, .geojson"}},
        {"text as polygons", "raster.polygonize", {{"In File", dem}, {"Out File", Path("notes.txt")}}, 20, {".txt", ".shp"}},
        {"no extension", "raster.aspect", {{"In File", dem}, {"Out File", Path("model")}}, 20, {"no extension", ".tif"}},
        {"text named as a raster", "raster.hillshade", {{"In File", dem}, {"Out File", Path("fake.tif")}}, 22, {"fake.tif", "not in GeoTIFF format"}},
        {"folder named as a layer", "vector.buffer", {{"In File", towns}, {"Distance", "1"}, {"Out File", Path("folder.shp")}}, 22, {"it is a folder"}},
    };
    if (lockable)
        cases.push_back({"read-only folder", "raster.slope", {{"In File", dem}, {"Out File", locked + "/slope.tif"}}, 22, {locked}});
    const auto before = Snapshot(dir.path());
    ExpectFailures(cases, QString(), {});
    ASSERT_TRUE(!lockable || lockFolder(locked, false));
    EXPECT_EQ(Snapshot(dir.path()), before);
    EXPECT_TRUE(QDir(locked).isEmpty());
}

TEST_F(StepReliability, OutputsAppearWholeOnlyWhenTheStepEnds)
{
    const QString dem = Dem("dem.tif");
    const QString out = Path("new/deeper/terrain.tif"); // folders made on the way
    struct Case { const char* name; const char* algorithm; };
    const std::vector<Case> cases = {{"a new output", "raster.slope"}, {"replacing it", "raster.aspect"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray old = ReadAll(out);
        // A stale sidecar of the old output must go with it.
        ASSERT_TRUE(old.isEmpty() || TestSupport::WriteAll(out + ".aux.xml", "<PAMDataset><Metadata><MDI key=\"old\">1</MDI></Metadata></PAMDataset>"));
        int changedWhileRunning = 0;
        const RunResult r = RunAlgorithm(c.algorithm, {{"In File", dem}, {"Out File", out}},
                                         [&](double percent) { changedWhileRunning += percent < 100 && ReadAll(out) != old; });
        ASSERT_EQ(r.ok, 1) << r.message.toStdString();
        EXPECT_EQ(changedWhileRunning, 0);
        EXPECT_EQ(QDir(QFileInfo(out).path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"terrain.tif"});
        EXPECT_EQ(ReadBand(out, 1).size(), 64u * 64u);
    }
}
