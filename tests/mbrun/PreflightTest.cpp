// Models that cannot run as they are, refused by mbrun before anything starts,
// each with a line that says what exactly is wrong.
#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "model/APCArrow.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>

using namespace Plugin;
using namespace TestSupport;

namespace {

// Saves a model of copy steps, one per pair of input and output, all files
// constant, after more had its say; the steps' ids, in order.
QStringList saveCopies(const QString& path, const QList<QPair<QString, QString>>& copies,
                       const std::function<void(HeadlessModel&)>& more = {})
{
    HeadlessModel m;
    QStringList ids;
    for (const auto& c : copies)
        ids << AddStep(m, "raster.translate", {{"In File", c.first}, {"Out File", c.second}})->GetName();
    if (more)
        more(m);
    m.SaveFile(path);
    return ids;
}

const QString kDem = QStringLiteral(MB_SOURCE_DIR "/examples/data/dem.tif");

} // namespace

TEST(Preflight, EachStructuralFaultIsNamedBeforeTheRun)
{
    QTemporaryDir dir;
    // Nested models name their file from the application root, as the editor stores it.
    const QDir root(QCoreApplication::applicationDirPath() + "/..");
    // Saves name, a model of one step, "Nested", that runs the model nested.
    auto nesting = [&](const char* name, const char* nested) {
        HeadlessModel m;
        AddModelStep(m, root.relativeFilePath(dir.filePath(nested)))->SetDescription("Nested");
        m.SaveFile(dir.filePath(name));
        return dir.filePath(name);
    };
    WriteAll(dir.filePath("text.apc"), "not a model");
    nesting("a.apc", "b.apc");
    const QString in = "/tmp/in.tif", out = "/tmp/out.tif", out2 = "/tmp/out2.tif";
    QString twin; // the id two vars share, and the first one's name
    saveCopies(dir.filePath("twins.apc"), {{in, out}}, [&](HeadlessModel& m) {
        auto* again = new APCVar;
        again->SetDescription("Again");
        m.AddVar(again);
        again->SetName(m.GetVars()[0]->GetName());
        twin = again->GetName() + " is held by 2 objects: \"" + m.GetVars()[0]->GetDescription();
    });
    saveCopies(dir.filePath("arrow.apc"), {{in, out}}, [](HeadlessModel& m) {
        AddArrow(m, m.GetProcesses()[0], "Out File", m.GetVars()[1], "")->SetHead("{gone}");
    });
    // The first step's output, also reached through a link.
    const QString link = dir.filePath("link.tif");
    WriteAll(dir.filePath("out.tif"), "");
    ASSERT_TRUE(QFile::link(dir.filePath("out.tif"), link));
    const QString real = QFileInfo(dir.filePath("out.tif")).canonicalFilePath();
    const QStringList reads = saveCopies(dir.filePath("reads.apc"), {{in, out}, {out, out2}});
    const QStringList linked = saveCopies(dir.filePath("linked.apc"), {{in, real}, {link, out2}});
    const QStringList both = saveCopies(dir.filePath("both.apc"), {{in, out}, {in, out}});
    const QString unordered = "mbrun: \"Convert raster\" (%1) reads %2, which \"Convert raster\" (%3) writes, and no arrow orders them";

    struct Case { const char* name; QString file; QStringList said; };
    const std::vector<Case> cases = {
        {"two vars of one id", dir.filePath("twins.apc"), {"the id " + twin + "\", \"Again\""}},
        {"an arrow to nothing", dir.filePath("arrow.apc"), {"an arrow ends at {gone} (var), which the model does not have"}},
        {"a step reads what another writes, no arrow between", dir.filePath("reads.apc"), {unordered.arg(reads[1], out, reads[0])}},
        {"a step reads through a link what another writes", dir.filePath("linked.apc"), {unordered.arg(linked[1], real, linked[0])}},
        {"two steps write one file", dir.filePath("both.apc"),
         {QStringLiteral("mbrun: \"Convert raster\" (%1) and \"Convert raster\" (%2) both write /tmp/out.tif, and no arrow orders them")
              .arg(both[0], both[1])}},
        {"nested: no such file", nesting("missing.apc", "none.apc"), {"Nested is wrong!", "which is not found"}},
        {"nested: not a model", nesting("text-nesting.apc", "text.apc"), {"Nested is wrong!", "which is not a model file"}},
        {"nested: itself", nesting("self.apc", "self.apc"), {"Nested is wrong!", "is the model itself"}},
        {"nested: a cycle", nesting("b.apc", "a.apc"), {"Nested is wrong!", "contains a model that contains it again: b.apc -> a.apc -> b.apc"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome o = Mbrun({c.file});
        EXPECT_EQ(o.code, 2) << qPrintable(o.err);
        for (const QString& line : c.said)
            EXPECT_TRUE(o.err.contains(line)) << qPrintable(o.err);
    }
}

TEST(Preflight, OptionsGdalRefusesAreNamedBeforeTheRun)
{
    QTemporaryDir dir;
    struct Case { const char* name; const char* algorithm; const char* out; const char* parameter; const char* value; QString said; };
    const std::vector<Case> cases = {
        {"an option the driver does not list", "raster.translate", "o.tif", "Creation options", "COMPRES=DEFLATE",
         "the parameter \"Creation options\" of \"Convert raster\" is refused: driver GTiff does not support creation option COMPRES"},
        {"a value outside the choices", "raster.translate", "o.tif", "Creation options", "TILED=YES;COMPRESS=ZIPPY",
         "\"Convert raster\" is refused: 'ZIPPY' is an unexpected value for COMPRESS creation option of type string-select"},
        {"the options of the output's own format", "raster.warp", "o.png", "Creation options", "COMPRESS=DEFLATE",
         "\"Reproject raster\" is refused: driver PNG does not support creation option COMPRESS"},
        {"a cloud-optimised GeoTIFF takes the COG driver's options", "raster.hillshade", "o.tif", "Creation options",
         "COG=YES;TILED=YES", "driver COG does not support creation option TILED"},
        {"no KEY=VALUE", "raster.slope", "o.tif", "Creation options", "DEFLATE",
         "\"Creation options\" of \"Slope\" is refused: 'DEFLATE' is not KEY=VALUE"},
        {"a layer option the driver does not list", "vector.translate", "o.gpkg", "Layer creation options", "SPATIAL=NO",
         "\"Layer creation options\" of \"Convert vector layer\" is refused: driver GPKG does not support layer creation option SPATIAL"},
        {"a layer option's value", "vector.buffer", "o.shp", "Layer creation options", "RESIZE=MAYBE",
         "'MAYBE' is an unexpected value for RESIZE layer creation option of type boolean"},
        {"a switch the utility does not know", "raster.translate", "o.tif", "Additional options", "-r cubic -bogus 3",
         "\"Additional options\" of \"Convert raster\" is refused: Unknown option name '-bogus'"},
        {"a switch's value", "raster.warp", "o.tif", "Additional options", "-r cubicle",
         "\"Additional options\" of \"Reproject raster\" is refused: Unknown resampling method: cubicle"},
        {"the format is the extension's", "vector.attributeFilter", "o.gpkg", "Additional options", "-f GeoJSON",
         "-f cannot be given: the output's extension picks the format"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HeadlessModel m;
        AddStep(m, c.algorithm, {{"In File", kDem}, {"Out File", dir.filePath(c.out)}, {"Target SRS", "EPSG:4326"}, {"Where", "1=1"},
                                 {"Distance", "1"}, {c.parameter, c.value}});
        ASSERT_TRUE(m.SaveFile(dir.filePath("case.apc")));
        const Outcome o = Mbrun({dir.filePath("case.apc")});
        EXPECT_EQ(o.code, 2) << qPrintable(o.err);
        EXPECT_TRUE(o.err.contains(c.said)) << qPrintable(o.err);
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(c.out)));
    }
}
