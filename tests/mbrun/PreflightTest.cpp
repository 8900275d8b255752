// Models that cannot run as they are, refused by mbrun before anything starts,
// each with a line that says what exactly is wrong.
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const char* kHead = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
)";

// A copy step between two constant vars; extra is put into the Vars and Arrows.
QByteArray copyModel(const QByteArray& extraVars, const QByteArray& extraArrows, const QByteArray& extraProcesses = {})
{
    return QByteArray(kHead) + R"(    <Processes>
        <Process class="algo" name="{s}" description="Copy" posX="0" posY="0" painter="" processName="raster.translate">
            <Parameter name="In File" type="file" direction="0" value="%{in}%" description="In"/>
            <Parameter name="Out File" type="file" direction="1" value="%{out}%" description="Out"/>
        </Process>
)" + extraProcesses + R"(    </Processes>
    <Vars>
        <Var class="file" name="{in}" description="In" posX="0" posY="0" painter="" constant="1" value="/tmp/in.tif"/>
        <Var class="file" name="{out}" description="Out" posX="0" posY="0" painter="" constant="1" value="/tmp/out.tif"/>
)" + extraVars + R"(    </Vars>
    <Arrows>
        <Arrow head="{s}" headType="process" headParam="In File" tail="{in}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{out}" headType="var" headParam="" tail="{s}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
)" + extraArrows + R"(    </Arrows>
</Configuration>
)";
}

// A second copy step from the var {in2} to the var {out2}, with its vars and arrows.
QByteArray secondCopy(const char* in, const char* out)
{
    return copyModel(QByteArray(R"(        <Var class="file" name="{in2}" description="In 2" posX="0" posY="0" painter="" constant="1" value=")") + in +
                         R"("/>
        <Var class="file" name="{out2}" description="Out 2" posX="0" posY="0" painter="" constant="1" value=")" + out + R"("/>
)",
                     R"(        <Arrow head="{t}" headType="process" headParam="In File" tail="{in2}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{out2}" headType="var" headParam="" tail="{t}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
)",
                     R"(        <Process class="algo" name="{t}" description="Copy 2" posX="0" posY="0" painter="" processName="raster.translate">
            <Parameter name="In File" type="file" direction="0" value="%{in2}%" description="In"/>
            <Parameter name="Out File" type="file" direction="1" value="%{out2}%" description="Out"/>
        </Process>
)");
}

// A model of one nested step that runs the model at file (relative to the root).
QByteArray nestingModel(const QString& file)
{
    return QByteArray(kHead) + R"(    <Processes>
        <Process class="model" name="{n}" description="Nested" posX="0" posY="0" painter="" processName=")" +
           file.toUtf8() + R"("/>
    </Processes>
</Configuration>
)";
}

} // namespace

TEST(Preflight, EachStructuralFaultIsNamedBeforeTheRun)
{
    QTemporaryDir dir;
    // Nested models name their file from the application root, as the editor stores it.
    const QDir root(QCoreApplication::applicationDirPath() + "/..");
    auto rel = [&](const char* name) { return root.relativeFilePath(dir.filePath(name)); };
    TestSupport::WriteAll(dir.filePath("text.apc"), "not a model");
    TestSupport::WriteAll(dir.filePath("self.apc"), nestingModel(rel("self.apc")));
    TestSupport::WriteAll(dir.filePath("a.apc"), nestingModel(rel("b.apc")));
    TestSupport::WriteAll(dir.filePath("b.apc"), nestingModel(rel("a.apc")));
    // The first step's output, also reached through a link.
    const QByteArray link = dir.filePath("link.tif").toUtf8();
    TestSupport::WriteAll(dir.filePath("out.tif"), "");
    ASSERT_TRUE(QFile::link(dir.filePath("out.tif"), link));
    const QString out = QFileInfo(dir.filePath("out.tif")).canonicalFilePath();

    struct Case { const char* name; QByteArray model; QStringList said; };
    const std::vector<Case> cases = {
        {"two vars of one id",
         copyModel(R"(        <Var class="file" name="{in}" description="Again" posX="0" posY="0" painter="" constant="1" value="x"/>
)", ""),
         {"the id {in} is held by 2 objects: \"In\", \"Again\""}},
        {"an arrow to nothing",
         copyModel("", R"(        <Arrow head="{gone}" headType="var" headParam="" tail="{s}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
)"),
         {"an arrow ends at {gone} (var), which the model does not have"}},
        {"a step reads what another writes, no arrow between",
         secondCopy("/tmp/out.tif", "/tmp/out2.tif"),
         {"mbrun: \"Convert raster\" ({t}) reads /tmp/out.tif, which \"Convert raster\" ({s}) writes, and no arrow orders them"}},
        {"a step reads through a link what another writes",
         secondCopy(link.constData(), "/tmp/out2.tif").replace("value=\"/tmp/out.tif\"", "value=\"" + out.toUtf8() + '"'),
         {"mbrun: \"Convert raster\" ({t}) reads " + out + ", which \"Convert raster\" ({s}) writes, and no arrow orders them"}},
        {"two steps write one file", secondCopy("/tmp/in.tif", "/tmp/out.tif"),
         {"mbrun: \"Convert raster\" ({s}) and \"Convert raster\" ({t}) both write /tmp/out.tif, and no arrow orders them"}},
        {"nested: no such file", nestingModel(rel("none.apc")), {"Nested is wrong!", "which is not found"}},
        {"nested: not a model", nestingModel(rel("text.apc")), {"Nested is wrong!", "which is not a model file"}},
        {"nested: itself", {}, {"Nested is wrong!", "is the model itself"}},
        {"nested: a cycle", {}, {"Nested is wrong!", "contains a model that contains it again: b.apc -> a.apc -> b.apc"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QString file = dir.filePath("case.apc");
        if (c.model.isEmpty())
            file = dir.filePath(QString(c.name).contains("itself") ? "self.apc" : "b.apc");
        else
            TestSupport::WriteAll(file, c.model);
        const TestSupport::Outcome o = TestSupport::Mbrun({file});
        const QString& errors = o.err;
        EXPECT_EQ(o.code, 2) << qPrintable(errors);
        for (const QString& line : c.said)
            EXPECT_TRUE(errors.contains(line)) << qPrintable(errors);
    }
}

namespace {

// The copy step of copyModel from in to out, as algorithm, with more parameters.
QByteArray optionsModel(const QString& in, const QString& out, const char* algorithm,
                        const std::vector<std::pair<const char*, const char*>>& parameters)
{
    QByteArray lines;
    for (const auto& p : parameters)
        lines += QByteArray("            <Parameter name=\"") + p.first + "\" type=\"string\" direction=\"0\" value=\"" + p.second +
                 "\" description=\"\"/>\n";
    QByteArray model = copyModel("", "");
    model.replace("/tmp/in.tif", in.toUtf8()).replace("/tmp/out.tif", out.toUtf8()).replace("raster.translate", algorithm);
    const QByteArray after = "description=\"Out\"/>\n";
    return model.insert(model.indexOf(after) + after.size(), lines);
}

const QString kDem = QStringLiteral(MB_SOURCE_DIR "/examples/data/dem.tif");

} // namespace

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
        const QString file = dir.filePath("case.apc");
        TestSupport::WriteAll(file, optionsModel(kDem, dir.filePath(c.out), c.algorithm,
                                                 {{"Target SRS", "EPSG:4326"}, {"Where", "1=1"}, {"Distance", "1"},
                                                  {c.parameter, c.value}}));
        const TestSupport::Outcome o = TestSupport::Mbrun({file});
        EXPECT_EQ(o.code, 2) << qPrintable(o.err);
        EXPECT_TRUE(o.err.contains(c.said)) << qPrintable(o.err);
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(c.out)));
    }
}
