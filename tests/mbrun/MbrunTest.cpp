// mbrun as a user runs it: a separate process, its output and its exit code.
#include "engine/APCAlgo.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Plugin;
using namespace TestSupport;

namespace {

// copy.apc: one copy step with a free input "Source" and a constant output.
QString writeCopyModel(const QTemporaryDir& dir, const QString& name, const QString& target)
{
    TestSupport::HeadlessModel m;
    APCAlgo* step = AddAlgo(m, "test.copyText");
    VarOf(m, step, "In File")->SetDescription("Source");
    SetConstant(VarOf(m, step, "Out File"), target);
    const QString path = dir.filePath(name);
    m.SaveFile(path);
    return path;
}

} // namespace

TEST(Mbrun, ExitCodesAndMessages)
{
    QTemporaryDir dir;
    WriteAll(dir.filePath("in.txt"), "cli");
    const QString model = writeCopyModel(dir, "copy.apc", dir.filePath("out.txt"));
    TestSupport::HeadlessModel empty;
    empty.SaveFile(dir.filePath("empty.apc"));
    TestSupport::HeadlessModel twoWriters;
    APCAlgo* first = AddStep(twoWriters, "test.copyText", {{"In File", dir.filePath("in.txt")}, {"Out File", dir.filePath("out.txt")}});
    APCAlgo* second = AddStep(twoWriters, "test.copyText", {{"In File", dir.filePath("in.txt")}});
    Connect(twoWriters, VarOf(twoWriters, first, "Out File"), second, "Out File");
    twoWriters.SaveFile(dir.filePath("two-writers.apc"));
    // test.copyText is a test algorithm: mbrun's registry lacks it, so the
    // step fails with the runner's own message.
    const QString source = "Source=" + dir.filePath("in.txt");

    struct Case { const char* name; QStringList args; int code; QString inOut; QString inErr; };
    const std::vector<Case> cases = {
        {"help", {"--help"}, 0, "Usage: mbrun", ""},
        {"no arguments", {}, 2, "Usage: mbrun", ""},
        {"unknown option", {model, "--bogus"}, 2, "", "unknown argument"},
        {"empty model", {dir.filePath("empty.apc")}, 2, "", "can not run an empty model!"},
        {"a var with two writers", {dir.filePath("two-writers.apc")}, 2, "", "is written by two steps"},
        {"unknown input", {model, "--set", "Nope=1"}, 2, "", "no free input named \"Nope\""},
        {"list", {model, "--list"}, 0, "\tSource\tfile\n", ""},
        {"a step fails", {model, "--set", source}, 1, "Error message: Unknown algorithm: test.copyText", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome o = Mbrun(c.args);
        EXPECT_EQ(o.code, c.code) << qPrintable(o.out + o.err);
        EXPECT_TRUE(o.out.contains(c.inOut)) << qPrintable(o.out);
        EXPECT_TRUE(o.err.contains(c.inErr)) << qPrintable(o.err);
    }
}

TEST(Mbrun, TheReadmeListsTheAlgorithmsAsTheRegistryHasThem)
{
    // The README's catalogue is pasted from `mbrun --algorithms`: it must not drift.
    const QString readme = QString::fromUtf8(ReadAll(QStringLiteral(MB_SOURCE_DIR "/README.md")));
    ASSERT_FALSE(readme.isEmpty());
    const Outcome o = Mbrun({"--algorithms"});
    EXPECT_EQ(o.code, 0);
    EXPECT_TRUE(o.out.contains("`raster.ndvi`"));
    EXPECT_TRUE(readme.contains(o.out)) << "regenerate the README section with build/bin/mbrun --algorithms";
}
