// Models that cannot run as they are, refused by mbrun before anything starts,
// each with a line that says what exactly is wrong.
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
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
