// mbrun for batch work, through the real binary on real rasters: folder inputs,
// refusals that say why, the plan of a dry run, the report, resuming and stopping.
#include "engine/APCAlgo.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"
#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QThread>
#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <vector>

using namespace Plugin;
using namespace TestSupport;

namespace {

QJsonObject readReport(const QString& path)
{
    return QJsonDocument::fromJson(ReadAll(path)).object();
}

// The hidden entries of dir, where an output is written before it is published,
// the state every run records left out.
QStringList hiddenIn(const QString& dir)
{
    return QDir(dir).entryList(QDir::Hidden | QDir::AllEntries | QDir::NoDotAndDotDot).filter(QRegularExpression("^\\.(?!mbrun-state)"));
}

// A quick copy of small.tif, then a reprojection of the copy into fine.tif, both
// in out (dir when empty); at a resolution of 1 it takes seconds, at 10 a moment.
void saveReprojection(const QTemporaryDir& dir, const QString& name, const char* resolution, QString out = QString())
{
    out = out.isEmpty() ? dir.path() : out;
    HeadlessModel m;
    APCAlgo* copy = AddStep(m, "raster.translate", {{"In File", dir.filePath("small.tif")}, {"Out File", out + "/copy.tif"}});
    APCAlgo* warp = AddStep(m, "raster.warp", {{"Target SRS", "EPSG:32632"}, {"Out File", out + "/fine.tif"},
                                               {"Resolution", resolution}, {"Resampling", "lanczos"}});
    Connect(m, VarOf(m, copy, "Out File"), warp, "In File");
    ASSERT_TRUE(m.SaveFile(dir.filePath(name)));
}

// Starts mbrun and waits until its first step has succeeded and the second writes
// its output in a hidden folder of dir.
void startUntilTheSlowStep(QProcess& p, const QStringList& args, const QString& dir)
{
    p.start(MbrunPath(), args);
    QString out;
    ASSERT_TRUE(WaitUntil([&] {
        p.waitForReadyRead(50);
        out += QString::fromUtf8(p.readAllStandardOutput());
        const bool writing = !QDir(dir).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot).filter(QRegularExpression("^\\.")).isEmpty();
        return (out.contains("Result of execution: Succeed") && writing) || p.state() == QProcess::NotRunning;
    }, 60000));
    ASSERT_EQ(p.state(), QProcess::Running) << "the slow step ended before it could be stopped";
}

// "round:algorithm" of each step of the report with that status, blank-separated.
std::string stepsWithStatus(const QJsonObject& report, const QString& status)
{
    QStringList steps;
    for (const QJsonValue& v : report["steps"].toArray())
        if (v["status"].toString() == status)
            steps << QStringLiteral("%1:%2").arg(v["round"].toInt()).arg(v["algorithm"].toString());
    return steps.join(QLatin1Char(' ')).toStdString();
}

// What /proc says of a process after its name: state, parent, ...; nothing once it is gone.
QList<QByteArray> procStat(const QString& pid)
{
    QFile stat("/proc/" + pid + "/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = stat.readAll(); // pid (name) state ppid ...
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
}

// The processes a process started.
QList<pid_t> childrenOf(pid_t parent)
{
    QList<pid_t> children;
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        const QList<QByteArray> fields = procStat(entry);
        if (fields.size() > 1 && fields[1].toInt() == parent)
            children << pid_t(entry.toInt());
    }
    return children;
}

// Gone, or a zombie that no one reaps once its parent is gone.
bool ended(pid_t pid)
{
    const QList<QByteArray> fields = procStat(QString::number(pid));
    return fields.isEmpty() || fields[0] == "Z";
}

} // namespace

TEST(MbrunBatch, FolderInputsInEveryForm)
{
    SceneBatch batch;
    const QString more = batch.dir.filePath("more");
    QDir().mkpath(more);
    MakeRaster(QDir(more).filePath("scene_04.tif"), 8, 4);
    const QString empty = batch.dir.filePath("empty");
    QDir().mkpath(empty);
    const QString missing = batch.dir.filePath("missing");

    const QString noFolder = "mbrun: \"Scene folders\" names the folder " + missing + ", which does not exist\n";
    struct Case { const char* name; QString folders; int code; int rounds; QString inErr; };
    const std::vector<Case> cases = {
        {"a plain folder", batch.scenes, 0, 3, ""},
        {"two folders and a stray separator", batch.scenes + ";" + more + ";", 0, 4, ""},
        {"the JSON object", QStringLiteral(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(batch.scenes), 0, 3, ""},
        {"an empty folder", empty, 0, 0, "warning: the iterator \"Scenes\" found no files in " + empty + " (filter "},
        {"a missing folder", missing, 2, 0, noFolder},
        {"a missing folder beside one that exists", batch.scenes + ";" + missing, 2, 0, noFolder},
        {"a missing folder in JSON", QStringLiteral(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(missing), 2, 0, noFolder},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome o = Mbrun(batch.Args({"--report", batch.report}, c.folders));
        EXPECT_EQ(o.code, c.code) << qPrintable(o.err);
        EXPECT_TRUE(o.err.contains(c.inErr)) << qPrintable(o.err);
        const QJsonObject report = readReport(batch.report);
        EXPECT_EQ(report["summary"]["rounds"].toInt(), c.rounds);
        EXPECT_EQ(report["summary"]["succeeded"].toInt(), 2 * c.rounds);
    }
}

TEST(MbrunBatch, RefusesBeforeTheRunAndSaysWhy)
{
    SceneBatch batch;
    QString text = QString::fromUtf8(ReadAll(batch.model));
    const QString badModel = batch.dir.filePath("typo.apc");
    WriteAll(badModel, text.replace("$ReplaceExtension(", "$ReplaceExtensio(").toUtf8());
    WriteAll(batch.dir.filePath("other-root.apc"), "<?xml version=\"1.0\"?>\n<Other/>\n");
    WriteAll(batch.dir.filePath("broken.apc"), "<Configuration>\n  <Processes>\n</Configuration>\n");
    HeadlessModel slope;
    AddStep(slope, "raster.slope", {{"Scale", ""}});
    slope.SaveFile(batch.dir.filePath("slope.apc"));
    HeadlessModel closed;
    AddStep(closed, "raster.translate", {{"In File", batch.Scene(1)}, {"Out File", batch.dir.filePath("copy.tif")}});
    closed.SaveFile(batch.dir.filePath("closed.apc"));
    HeadlessModel loop; // each step reads what the other writes
    APCAlgo* first = AddStep(loop, "raster.translate", {{"Out File", batch.dir.filePath("a.tif")}});
    APCAlgo* second = AddStep(loop, "raster.slope", {{"Out File", batch.dir.filePath("b.tif")}});
    Connect(loop, VarOf(loop, first, "Out File"), second, "In File");
    Connect(loop, VarOf(loop, second, "Out File"), first, "In File");
    loop.SaveFile(batch.dir.filePath("loop.apc"));
    HeadlessModel itself; // one step reading what it writes
    APCAlgo* alone = AddStep(itself, "raster.translate", {{"Out File", batch.dir.filePath("c.tif")}});
    Connect(itself, VarOf(itself, alone, "Out File"), alone, "In File");
    itself.SaveFile(batch.dir.filePath("itself.apc"));
    HeadlessModel empty;
    empty.SaveFile(batch.dir.filePath("empty.apc"));
    HeadlessModel twoWriters;
    APCAlgo* writer = AddStep(twoWriters, "raster.translate", {{"In File", batch.Scene(1)}, {"Out File", batch.dir.filePath("d.tif")}});
    APCAlgo* rewriter = AddStep(twoWriters, "raster.translate", {{"In File", batch.Scene(2)}});
    Connect(twoWriters, VarOf(twoWriters, writer, "Out File"), rewriter, "Out File");
    twoWriters.SaveFile(batch.dir.filePath("two-writers.apc"));
    // test.copyText is a test algorithm: mbrun's registry lacks it, so the step
    // fails with the runner's own message.
    HeadlessModel unknown;
    AddStep(unknown, "test.copyText", {{"In File", batch.Scene(1)}, {"Out File", batch.dir.filePath("e.txt")}});
    unknown.SaveFile(batch.dir.filePath("unknown.apc"));
    const QString flow = batch.dir.filePath("flow");
    const QString cycle = "the model cannot run: the steps \"Convert raster\" -> \"Slope\" -> \"Convert raster\" wait for each other";

    struct Case { const char* name; QStringList args; int code; QStringList inErr; QString inOut = QString(); };
    const std::vector<Case> cases = {
        {"help", {"--help"}, 0, {}, "Usage: mbrun"},
        {"no arguments", {}, 2, {}, "Usage: mbrun"},
        {"an unknown option", {batch.model, "--bogus"}, 2, {"unknown argument"}},
        {"an empty model", {batch.dir.filePath("empty.apc")}, 2, {"can not run an empty model!"}},
        {"a var with two writers", {batch.dir.filePath("two-writers.apc")}, 2, {"is written by two steps"}},
        {"an unknown input", batch.Args({"--set", "Nope=1"}), 2, {"no free input named \"Nope\""}},
        {"the inputs listed", {batch.model, "--list"}, 0, {}, "\tScene folders\tmultiDirectory\n"},
        {"a step fails", {batch.dir.filePath("unknown.apc")}, 1, {}, "Error message: Unknown algorithm: test.copyText"},
        {"an unknown function", {badModel}, 2,
         {"the variable \"Statistics table\" has an expression that cannot be read: $ReplaceExtensio(%{",
          "there is no function \"$ReplaceExtensio\""}},
        {"the same in a dry run", {badModel, "--dry-run"}, 2, {"$ReplaceExtensio("}},
        {"an empty parameter", {batch.dir.filePath("slope.apc")}, 2,
         {"Slope is wrong!\nmbrun: the parameter \"Scale\" of \"Slope\" has no value ("}},
        {"every missing input", {batch.model}, 2,
         {"Please set value: Scene folders", "Please set value: Output folder"}},
        {"folders that are neither", batch.Args({}, "{\"/data\":"), 2, {"\"Scene folders\" takes folders separated by ';'"}},
        {"no such file", {batch.dir.filePath("none.apc")}, 2, {"none.apc: no such file"}},
        {"a folder", {batch.scenes}, 2, {"it is a folder"}},
        {"not XML", {batch.dir.filePath("broken.apc")}, 2, {"it is not XML: tag mismatch at line 3, column 16"}},
        {"another root", {batch.dir.filePath("other-root.apc")}, 2, {"its root element is \"Other\", not \"Configuration\""}},
        {"a report over the model", batch.Args({"--report", batch.model}), 2, {"would replace the model file"}},
        {"no inputs to list", {batch.dir.filePath("closed.apc"), "--list"}, 0, {"the model has no free inputs"}},
        {"steps in a cycle", {batch.dir.filePath("loop.apc")}, 2, {cycle}},
        {"the same in a dry run", {batch.dir.filePath("loop.apc"), "--dry-run"}, 2, {cycle}},
        {"a step waiting for itself", {batch.dir.filePath("itself.apc")}, 2,
         {"the steps \"Convert raster\" -> \"Convert raster\" wait for each other"}},
        {"rounds listed without the inputs", {batch.model, "--list-rounds"}, 2, {"Please set value: Scene folders"}},
        {"a round past the last", batch.Args({"--round", "4"}), 2, {"there is no round 4"}},
        {"a file no round is driven by", batch.Args({"--round-file", batch.dir.filePath("x.tif")}), 2, {"hands out no round driven by"}},
        // What the export refuses, it refuses as a run does.
        {"an export without an input", {batch.model, "--export", "snakemake", flow}, 2, {"Please set value: Scene folders"}},
        {"an export of a folder that does not exist", batch.Args({"--export", "snakemake", flow}, batch.dir.filePath("none")), 2,
         {"\"Scene folders\" names the folder " + batch.dir.filePath("none") + ", which does not exist"}},
        {"an export with no folder to write into", batch.Args({"--export", "snakemake"}), 2, {"--export snakemake DIR"}},
    };
    const QByteArray modelBytes = ReadAll(batch.model);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome o = Mbrun(c.args);
        EXPECT_EQ(o.code, c.code) << qPrintable(o.out + o.err);
        for (const QString& part : c.inErr)
            EXPECT_TRUE(o.err.contains(part)) << qPrintable(o.err);
        EXPECT_TRUE(o.out.contains(c.inOut)) << qPrintable(o.out);
        EXPECT_FALSE(QDir(batch.out).exists());
        EXPECT_FALSE(QDir(flow).exists());
    }
    EXPECT_EQ(ReadAll(batch.model), modelBytes);
    EXPECT_EQ(Mbrun({batch.dir.filePath("closed.apc"), "--list-rounds"}).out, "Round 1: the whole model (it has no iterator)\n");

    // A refused run still leaves its report, in a folder made for it.
    const QString report = batch.dir.filePath("reports/refused.json");
    EXPECT_EQ(Mbrun({badModel, "--report", report}).code, 2);
    const QJsonObject r = readReport(report);
    EXPECT_EQ(r["status"].toString(), "refused");
    EXPECT_EQ(r["exitCode"].toInt(), 2);
    EXPECT_TRUE(r["messages"][0].toString().startsWith("mbrun: the variable \"Statistics table\""));
    EXPECT_EQ(r["summary"]["steps"].toInt(), 0);
}

TEST(MbrunBatch, ResumeRunsOnlyWhatIsNotUpToDate)
{
    SceneBatch batch;
    const QString state = QDir(batch.out).filePath(".mbrun-state.json");
    const std::string all = "1:raster.ndvi 1:raster.bandStatistics 2:raster.ndvi 2:raster.bandStatistics "
                            "3:raster.ndvi 3:raster.bandStatistics";
    struct Case { const char* name; std::function<void()> change; std::string ran; int count; };
    const std::vector<Case> cases = {
        {"the first run, a plain one", [] {}, all, 6},
        {"nothing changed", [] {}, "", 0},
        {"a scene touched",
         [&] {
             QFile scene(batch.Scene(2));
             ASSERT_TRUE(scene.open(QIODevice::ReadWrite));
             ASSERT_TRUE(scene.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime));
         },
         "2:raster.ndvi 2:raster.bandStatistics", 2},
        {"an output deleted", [&] { QFile::remove(batch.Table(3)); }, "3:raster.bandStatistics", 1},
        {"an unreadable state", [&] { WriteAll(state, "{"); }, all, 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.change();
        const QMap<QString, qint64> before = FileTimes(batch.out);
        const bool first = &c == &cases.front(); // every run records what it wrote
        const Outcome o = Mbrun(batch.Args(first ? QStringList{"--report", batch.report}
                                                 : QStringList{"--resume", "--report", batch.report}));
        EXPECT_EQ(o.code, 0) << qPrintable(o.err);
        const QJsonObject r = readReport(batch.report);
        EXPECT_EQ(stepsWithStatus(r, "succeeded"), c.ran);
        EXPECT_EQ(r["summary"]["skipped"].toInt(), 6 - c.count);
        EXPECT_EQ(o.out.count("Skip the step: "), 6 - c.count);
        if (c.count == 0) {
            EXPECT_EQ(FileTimes(batch.out), before); // not one file written, not even the state
        }
    }
    QFile::remove(batch.Ndvi(1));
    const Outcome plan = Mbrun(batch.Args({"--dry-run", "--resume"}));
    EXPECT_TRUE(plan.out.endsWith("Plan: 3 rounds, 6 steps, 6 output files, 4 steps up to date; nothing was run.\n"))
        << qPrintable(plan.out);
    EXPECT_FALSE(QFile::exists(batch.Ndvi(1)));
}

TEST(MbrunBatch, ASignalStopsTheRunAndTheReportSaysWhatFinished)
{
    QTemporaryDir dir;
    MakeRaster(dir.filePath("small.tif"), 400, 1);
    saveReprojection(dir, "slow.apc", "1");

    struct Case { const char* name; int signal; int code; };
    const std::vector<Case> cases = {{"SIGTERM", SIGTERM, 143}, {"SIGINT", SIGINT, 130}, {"SIGHUP", SIGHUP, 129}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString report = dir.filePath(QStringLiteral("%1.json").arg(c.name));
        QProcess p;
        startUntilTheSlowStep(p, {dir.filePath("slow.apc"), "--report", report}, dir.path());
        ASSERT_EQ(::kill(pid_t(p.processId()), c.signal), 0);
        ASSERT_TRUE(p.waitForFinished(30000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        const QString err = QString::fromUtf8(p.readAllStandardError());
        EXPECT_EQ(p.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(p.exitCode(), c.code) << qPrintable(err);
        EXPECT_TRUE(out.contains("\nEnd the model: slow\n")) << qPrintable(out); // as the Stop command logs it
        EXPECT_TRUE(err.endsWith(QStringLiteral("mbrun: %1 stopped the run; steps finished: 1\n").arg(c.name))) << qPrintable(err);

        const QJsonObject r = readReport(report);
        EXPECT_EQ(r["status"].toString(), "interrupted");
        EXPECT_EQ(r["signal"].toString(), c.name);
        EXPECT_EQ(r["exitCode"].toInt(), c.code);
        EXPECT_EQ(stepsWithStatus(r, "succeeded"), "0:raster.translate");
        EXPECT_EQ(stepsWithStatus(r, "interrupted"), "0:raster.warp");
        EXPECT_EQ(r["steps"][0]["written"].toArray(), QJsonArray{dir.filePath("copy.tif")});
        EXPECT_FALSE(QFile::exists(dir.filePath("fine.tif"))); // never half a file under its name
        EXPECT_EQ(hiddenIn(dir.path()), QStringList()); // nor half a file beside it
        // What finished is recorded: --resume goes on from the step stopped.
        EXPECT_TRUE(ReadAll(dir.filePath(".mbrun-state.json")).contains("\"copy.tif\""));
    }

    // A second resumed run on the folder is refused while the first holds its state.
    // Killed outright, the first leaves what it was writing and its lock; the next run
    // removes the one, and only it, and takes the other over.
    saveReprojection(dir, "quick.apc", "10");
    WriteAll(dir.filePath(".keep"), "not ours");
    const QString state = dir.filePath(".mbrun-state.json");
    QFile::remove(state); // or the copy would be skipped as up to date
    QProcess p;
    startUntilTheSlowStep(p, {dir.filePath("slow.apc"), "--resume"}, dir.path());
    const Outcome second = Mbrun({dir.filePath("quick.apc"), "--resume"});
    EXPECT_EQ(second.code, 2) << qPrintable(second.out + second.err);
    EXPECT_TRUE(second.err.contains(QStringLiteral("mbrun: the resume state %1 is in use by another run: process %2 on %3\n")
                                        .arg(state)
                                        .arg(p.processId())
                                        .arg(QSysInfo::machineHostName())))
        << qPrintable(second.err);
    EXPECT_FALSE(second.out.contains("Result of execution")); // it ran nothing
    ASSERT_EQ(::kill(pid_t(p.processId()), SIGKILL), 0);
    ASSERT_TRUE(p.waitForFinished(30000));
    ASSERT_EQ(hiddenIn(dir.path()).size(), 2) << "no output was being written when the run was killed";
    const Outcome next = Mbrun({dir.filePath("quick.apc"), "--resume"});
    EXPECT_EQ(next.code, 0) << qPrintable(next.err);
    EXPECT_TRUE(QFile::exists(dir.filePath("fine.tif")));
    EXPECT_EQ(hiddenIn(dir.path()), QStringList{".keep"});
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).filter(".mbrun"), QStringList{".mbrun-state.json"});
}

TEST(MbrunBatch, OutputPathsLeadWhereTheSystemResolvesThem)
{
    SceneBatch batch;
    // After a link, ".." leads to the parent of the link's target, as for GDAL's own programs.
    const QString base = batch.dir.path();
    QDir().mkpath(base + "/real/deep");
    QDir().mkpath(base + "/sl");
    ASSERT_TRUE(QFile::link(base + "/real/deep", base + "/sl/link"));
    HeadlessModel m;
    AddStep(m, "raster.translate", {{"In File", batch.Scene(1)}, {"Out File", base + "/sl/link/../o.tif"}});
    ASSERT_TRUE(m.SaveFile(base + "/linked.apc"));
    const Outcome linked = Mbrun({base + "/linked.apc"});
    EXPECT_EQ(linked.code, 0) << qPrintable(linked.out + linked.err);
    QProcess reference;
    reference.start("gdal_translate", {"-q", batch.Scene(1), base + "/sl/link/../g.tif"});
    ASSERT_TRUE(reference.waitForFinished(30000));
    ASSERT_TRUE(QFile::exists(base + "/real/g.tif"));
    EXPECT_TRUE(QFile::exists(base + "/real/o.tif"));
    EXPECT_FALSE(QFile::exists(base + "/sl/o.tif"));

    // A folder that is not there before ".." is made, as mkdir -p makes it, and every
    // step that reads an output finds it where it was written.
    const Outcome made = Mbrun({batch.model, "--set", "Scene folders=" + batch.scenes, "--set", "Output folder=" + base + "/x/../y"});
    EXPECT_EQ(made.code, 0) << qPrintable(made.out + made.err);
    for (int i = 1; i <= 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(QFile::exists(base + QStringLiteral("/y/scene_%1_ndvi.tif").arg(i, 2, 10, QLatin1Char('0'))));
        EXPECT_TRUE(QFile::exists(base + QStringLiteral("/y/scene_%1_ndvi.csv").arg(i, 2, 10, QLatin1Char('0'))));
    }
}

// A step that fails at once, on an input of a long path, while a slow one goes on
// to write an output of a long name; then a step interrupted after it published
// one of its outputs.
TEST(MbrunBatch, FailedAndInterruptedStepsAreAccountedForWithWhatTheyLeftOnTheDisk)
{
    QTemporaryDir dir;
    MakeRaster(dir.filePath("small.tif"), 400, 1);
    const QString longName = dir.filePath(QString(246, 'n') + ".tif"); // 250 bytes, 5 short of the limit
    const QString missing = dir.path() + "/" + QString(200, 'd') + "/" + QString(200, 'e') + "/none.tif";
    HeadlessModel m;
    AddStep(m, "raster.slope", {{"In File", missing}, {"Out File", dir.filePath("slope.tif")}});
    APCAlgo* warp = AddStep(m, "raster.warp", {{"In File", dir.filePath("small.tif")}, {"Target SRS", "EPSG:32632"},
                                               {"Out File", longName}, {"Resolution", "2"}, {"Resampling", "lanczos"}});
    ASSERT_TRUE(m.SaveFile(dir.filePath("branches.apc")));

    const Outcome o = Mbrun({dir.filePath("branches.apc"), "--report", dir.filePath("report.json")});
    EXPECT_EQ(o.code, 1) << qPrintable(o.err);
    EXPECT_TRUE(o.err.contains("waiting for the steps still running (1): \"" + warp->GetDescription() + "\"\n"))
        << qPrintable(o.err);
    EXPECT_EQ(o.out.count("Result of execution: Succeed"), 1) << qPrintable(o.out); // logged after the summary
    EXPECT_TRUE(QFile::exists(longName));
    const QString message = "Cannot open raster " + missing + ": no such file";
    EXPECT_TRUE(o.out.contains(message)) << qPrintable(o.out);
    const QJsonObject r = readReport(dir.filePath("report.json"));
    EXPECT_EQ(stepsWithStatus(r, "failed"), "0:raster.slope");
    EXPECT_EQ(stepsWithStatus(r, "succeeded"), "0:raster.warp");
    EXPECT_EQ(r["summary"]["unfinished"].toInt(), 0);
    for (const QJsonValue& step : r["steps"].toArray()) {
        if (step["status"].toString() == "failed") {
            EXPECT_EQ(step["errorMessage"].toString(), message);
        }
    }

    // A nested model: a quick copy to its output "Copy", then a slow reprojection of
    // that to its output "Fine". The step running it publishes one output long
    // before it ends.
    HeadlessModel inner;
    APCAlgo* copy = AddStep(inner, "raster.translate", {{"In File", dir.filePath("small.tif")}});
    APCAlgo* fine = AddStep(inner, "raster.warp", {{"Target SRS", "EPSG:32632"}, {"Resolution", "1"}, {"Resampling", "lanczos"}});
    VarOf(inner, copy, "Out File")->SetDescription("Copy");
    Connect(inner, VarOf(inner, copy, "Out File"), fine, "In File");
    VarOf(inner, fine, "Out File")->SetDescription("Fine");
    ASSERT_TRUE(inner.SaveFile(dir.filePath("inner.apc")));
    const QMap<QString, QString> outputs = {{"Copy", dir.filePath("copy.tif")}, {"Fine", dir.filePath("fine.tif")}};
    HeadlessModel outer;
    // Nested models are named from the application root, mbrun's as this program's.
    AddModelStep(outer, QDir(QCoreApplication::applicationDirPath() + "/..").relativeFilePath(dir.filePath("inner.apc")), outputs);
    ASSERT_TRUE(outer.SaveFile(dir.filePath("outer.apc")));

    QProcess p;
    p.start(MbrunPath(), {dir.filePath("outer.apc"), "--report", dir.filePath("report.json")});
    ASSERT_TRUE(WaitUntil([&] { return QFile::exists(outputs["Copy"]) || p.state() == QProcess::NotRunning; }, 60000));
    ASSERT_EQ(p.state(), QProcess::Running) << p.readAllStandardError().constData();
    ASSERT_EQ(::kill(pid_t(p.processId()), SIGTERM), 0);
    ASSERT_TRUE(p.waitForFinished(30000));
    EXPECT_EQ(p.exitCode(), 143);
    const QJsonObject stopped = readReport(dir.filePath("report.json"));
    ASSERT_EQ(stopped["steps"].toArray().size(), 1);
    EXPECT_EQ(stopped["steps"][0]["status"].toString(), "interrupted");
    EXPECT_EQ(stopped["steps"][0]["outputs"].toArray(), QJsonArray({outputs["Copy"], outputs["Fine"]}));
    EXPECT_EQ(stopped["steps"][0]["written"].toArray(), QJsonArray{outputs["Copy"]});
}

TEST(MbrunBatch, AReportOrStateThatCannotBeWrittenWholeIsAnErrorAndKeepsTheOldFile)
{
    SceneBatch batch;
    QDir().mkpath(batch.out);
    const QString state = QDir(batch.out).filePath(".mbrun-state.json");
    struct Case { const char* name; QStringList args; QString file; QString inErr; int code = 1; QStringList roundSaid = {}; };
    const std::vector<Case> cases = {
        {"the report", {"--report", batch.report}, batch.report, "mbrun: cannot write the report " + batch.report + ": "},
        {"the state", {"--resume"}, state, "mbrun: cannot write the resume state " + state + ": "},
        // A round's process says why it has no report to hand over.
        {"rounds side by side", {"--jobs", "2", "--report", batch.report}, batch.report,
         "mbrun: cannot write the report " + batch.report + ": ", 2,
         {"/round-1.json: " + QString(strerror(EFBIG)) + "\n", "mbrun: the run of round 1 ended without a report (it exited with code 1)\n"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray old = "{\"written\": \"by an earlier run\"}\n";
        ASSERT_TRUE(WriteAll(c.file, old));
        Outcome o;
        {
            // Room for the rasters and tables of the steps (634 and 80 bytes), not for the report or the state.
            const FileSizeLimit full(1024);
            o = Mbrun(batch.Args(c.args));
        }
        EXPECT_EQ(o.code, c.code) << qPrintable(o.err);
        EXPECT_TRUE(o.err.contains(c.inErr + strerror(EFBIG) + "\n")) << qPrintable(o.err);
        for (const QString& part : c.roundSaid)
            EXPECT_TRUE(o.err.contains(part)) << qPrintable(o.err);
        EXPECT_TRUE(QFile::exists(batch.Table(3))); // the steps themselves ran
        EXPECT_EQ(ReadAll(c.file), old);
        EXPECT_EQ(QDir(QFileInfo(c.file).path()).entryList(QDir::Files | QDir::Hidden).filter(".json"),
                  QStringList{QFileInfo(c.file).fileName()}); // no temporary left
        QFile::remove(c.file);
    }
}


// A dry run touches no file; one round alone runs as the plan and the list number it.
// A file the iterator leaves out, a hidden one, is named in the plan, the run and the report.
TEST(MbrunBatch, DryRunListRoundsAndOneRoundAloneFollowTheRunsNumbering)
{
    SceneBatch batch;
    const QString hidden = QDir(batch.scenes).filePath(".scene_09.tif");
    WriteAll(hidden, "");
    const QString leftOut = "mbrun: warning: files in the folders of the iterator \"Scenes\" that no round used (1):\nmbrun:   " + hidden + "\n";
    const QMap<QString, qint64> before = FileTimes(batch.dir.path());
    Outcome o = Mbrun(batch.Args({"--dry-run", "--resume"}));
    EXPECT_EQ(o.code, 0) << qPrintable(o.err);
    EXPECT_TRUE(o.err.contains(leftOut)) << qPrintable(o.err);
    EXPECT_EQ(FileTimes(batch.dir.path()), before);
    EXPECT_FALSE(o.out.contains("Start the model")); // the engine's log is not the plan
    for (int i = 1; i <= 3; ++i) {
        SCOPED_TRACE(i);
        const QString round = QStringLiteral("Round %1 of Scenes:\n    Out File = %2\n").arg(i).arg(batch.Scene(i));
        const int at = o.out.indexOf(round);
        ASSERT_GE(at, 0) << qPrintable(o.out);
        const int ndvi = o.out.indexOf(": NDVI (raster.ndvi)\n      In File = " + batch.Scene(i) + "\n      Out File = " +
                                       batch.Ndvi(i) + "   (output)\n", at);
        const int stats = o.out.indexOf("In File = " + batch.Ndvi(i) + "\n      Out File = " + batch.Table(i), at);
        EXPECT_GT(ndvi, at);
        EXPECT_GT(stats, ndvi);
    }
    EXPECT_TRUE(o.out.endsWith("Plan: 3 rounds, 6 steps, 6 output files; nothing was run.\n")) << qPrintable(o.out);

    o = Mbrun(batch.Args({"--list-rounds"}));
    EXPECT_EQ(o.code, 0) << qPrintable(o.err);
    EXPECT_EQ(o.out, QStringLiteral("Round 1 of Scenes: %1\n    Out File = %1\nRound 2 of Scenes: %2\n    Out File = %2\n"
                                    "Round 3 of Scenes: %3\n    Out File = %3\n")
                         .arg(batch.Scene(1), batch.Scene(2), batch.Scene(3)));
    o = Mbrun(batch.Args({"--list-rounds", "--json"}));
    const QJsonArray rounds = QJsonDocument::fromJson(o.out.toUtf8())["rounds"].toArray();
    ASSERT_EQ(rounds.size(), 3) << qPrintable(o.out);
    EXPECT_EQ(rounds[2]["round"].toInt(), 3);
    EXPECT_EQ(rounds[2]["file"].toString(), batch.Scene(3));
    EXPECT_EQ(rounds[2]["files"]["Out File"].toString(), batch.Scene(3));

    o = Mbrun(batch.Args({"--round", "2", "--report", batch.report}));
    EXPECT_EQ(o.code, 0) << qPrintable(o.err);
    EXPECT_TRUE(o.err.contains(leftOut)) << qPrintable(o.err);
    EXPECT_FALSE(QFile::exists(batch.Ndvi(1)));
    EXPECT_TRUE(QFile::exists(batch.Table(2)));
    EXPECT_FALSE(QFile::exists(batch.Ndvi(3)));
    const QJsonObject r = readReport(batch.report);
    ASSERT_EQ(r["rounds"].toArray().size(), 1);
    EXPECT_EQ(r["rounds"][0]["round"].toInt(), 2);
    EXPECT_EQ(r["rounds"][0]["file"].toString(), batch.Scene(2));
    EXPECT_EQ(stepsWithStatus(r, "succeeded"), "2:raster.ndvi 2:raster.bandStatistics");
    EXPECT_EQ(r["leftOutFiles"]["Scenes"].toArray(), QJsonArray{hidden});
    o = Mbrun(batch.Args({"--round", "2-3", "--report", batch.report}));
    EXPECT_EQ(stepsWithStatus(readReport(batch.report), "succeeded"),
              "2:raster.ndvi 2:raster.bandStatistics 3:raster.ndvi 3:raster.bandStatistics");
}

// The report of a run with a failed round, and rounds side by side give its files
// and its report.
TEST(MbrunBatch, TheReportNamesEveryStepAndRoundsSideBySideGiveTheSame)
{
    SceneBatch batch;
    for (int i : {4, 5})
        MakeRaster(batch.Scene(i), 8, 4);
    WriteAll(batch.Scene(2), "not a raster"); // its round fails, the others go on
    // What the report says, the output folder aside.
    const auto content = [](const QJsonObject& report, const QString& out) {
        QStringList lines{QStringLiteral("%1 %2").arg(report["status"].toString()).arg(report["exitCode"].toInt())};
        QJsonObject summary = report["summary"].toObject();
        lines << QString::fromUtf8(QJsonDocument(summary).toJson(QJsonDocument::Compact));
        for (const QJsonValue& round : report["rounds"].toArray())
            lines << QStringLiteral("round %1 %2 %3").arg(round["round"].toInt()).arg(round["file"].toString(), round["status"].toString());
        for (const QJsonValue& step : report["steps"].toArray())
            lines << QStringLiteral("step %1 %2 %3 %4")
                         .arg(step["round"].toInt())
                         .arg(step["algorithm"].toString(), step["status"].toString(),
                              QString::fromUtf8(QJsonDocument(step["parameters"].toObject()).toJson(QJsonDocument::Compact)))
                         .replace(out, "OUT");
        lines << QString::number(report["failedRounds"].toArray().size());
        return lines;
    };
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    QMap<QString, QByteArray> files[2];
    QStringList said[2];
    for (int jobs : {1, 2}) {
        SCOPED_TRACE(jobs);
        const QString out = batch.dir.filePath(QStringLiteral("out%1").arg(jobs));
        const QString report = batch.dir.filePath(QStringLiteral("report%1.json").arg(jobs));
        const Outcome o = Mbrun({batch.model, "--set", "Scene folders=" + batch.scenes, "--set", "Output folder=" + out,
                                 "--jobs", QString::number(jobs), "--report", report});
        EXPECT_EQ(o.code, 1) << qPrintable(o.err);
        EXPECT_TRUE(o.err.endsWith("mbrun: 1 of 5 rounds failed: " + batch.Scene(2) + "\n")) << qPrintable(o.err);
        files[jobs - 1] = Checksums(out);
        said[jobs - 1] = content(readReport(report), out);
        if (jobs == 1) {
            const QJsonObject r = readReport(report);
            EXPECT_EQ(r["format"].toString(), "mbrun-report/1");
            EXPECT_EQ(r["model"].toString(), batch.model);
            EXPECT_TRUE(r["signal"].isNull());
            EXPECT_EQ(r["inputs"]["Output folder"].toString(), out);
            // Status, exit code and summary: the table of scene 2 never ran.
            EXPECT_EQ(said[0].mid(0, 2).join('\n').toStdString(), "failed 1\n"
                      R"({"failed":1,"failedRounds":1,"interrupted":0,"rounds":5,"skipped":0,"steps":9,"succeeded":8,"unfinished":0})");
            const QJsonArray failedRounds = r["failedRounds"].toArray();
            ASSERT_EQ(failedRounds.size(), 1);
            EXPECT_EQ(failedRounds[0]["round"].toInt(), 2);
            EXPECT_EQ(failedRounds[0]["file"].toString(), batch.Scene(2));
            EXPECT_EQ(failedRounds[0]["failedSteps"].toArray(), QJsonArray{"NDVI"});

            const QJsonArray steps = r["steps"].toArray();
            ASSERT_EQ(steps.size(), 9);
            const QJsonObject first = steps[0].toObject();
            EXPECT_EQ(first["algorithm"].toString(), "raster.ndvi");
            EXPECT_EQ(first["step"].toString(), "NDVI");
            EXPECT_EQ(first["round"].toInt(), 1);
            EXPECT_EQ(first["parameters"]["In File"].toString(), batch.Scene(1));
            EXPECT_EQ(first["parameters"]["Out File"].toString(), QDir(out).filePath("scene_01_ndvi.tif"));
            EXPECT_EQ(first["parameters"]["Red Band"].toString(), "3");
            EXPECT_EQ(first["status"].toString(), "succeeded");
            EXPECT_EQ(first["errorCode"].toInt(), 0);
            EXPECT_EQ(first["written"].toArray(), QJsonArray{QDir(out).filePath("scene_01_ndvi.tif")});
            const QDateTime start = QDateTime::fromString(first["start"].toString(), Qt::ISODateWithMs);
            const QDateTime end = QDateTime::fromString(first["end"].toString(), Qt::ISODateWithMs);
            EXPECT_LE(before, start);
            EXPECT_LE(start, end);
            const QJsonObject failed = steps[2].toObject();
            EXPECT_EQ(failed["round"].toInt(), 2);
            EXPECT_EQ(failed["status"].toString(), "failed");
            EXPECT_NE(failed["errorCode"].toInt(), 0);
            EXPECT_TRUE(failed["errorMessage"].toString().contains("scene_02.tif")) << qPrintable(failed["errorMessage"].toString());
            EXPECT_TRUE(o.out.contains("Error message: " + failed["errorMessage"].toString()));
            EXPECT_EQ(failed["outputs"].toArray(), QJsonArray{QDir(out).filePath("scene_02_ndvi.tif")});
            EXPECT_TRUE(failed["written"].toArray().isEmpty());
        }
        if (jobs == 2) {
            // Each round's log is whole, in the order the rounds ended: each scene's
            // lines come together, never mixed with another's.
            QList<int> scenes;
            for (auto m = QRegularExpression("scene_0(\\d)").globalMatch(o.out); m.hasNext();) {
                const int scene = m.next().captured(1).toInt();
                if (scenes.isEmpty() || scenes.last() != scene)
                    scenes << scene;
            }
            std::sort(scenes.begin(), scenes.end());
            EXPECT_EQ(scenes, (QList<int>{1, 2, 3, 4, 5}));
            EXPECT_TRUE(o.out.endsWith("Generate: Succeed: 13, Fail: 1 =============================\n")) << qPrintable(o.out);
        }
    }
    EXPECT_EQ(files[0].size(), 8);
    EXPECT_FALSE(files[0].contains("scene_02_ndvi.tif"));
    EXPECT_EQ(files[0], files[1]);
    EXPECT_EQ(said[0], said[1]);
    // The rounds' runs, side by side, each recorded what it wrote into one state,
    // and resumed side by side they skip it all.
    const Outcome resumed = Mbrun({batch.model, "--set", "Scene folders=" + batch.scenes, "--set",
                                   "Output folder=" + batch.dir.filePath("out2"), "--resume", "--jobs", "2"});
    EXPECT_EQ(resumed.out.count("Skip the step: "), 8) << qPrintable(resumed.out);
    EXPECT_EQ(resumed.code, 1); // the broken scene fails again, alone

    // On a terminal a line under the log tells how far the batch is: with one job
    // the iterator's share leads each step's; side by side it counts the rounds as
    // they end, and the rounds' marks that feed it reach neither terminal nor log.
    const auto onTerminal = [&](const QString& jobs) {
        const QString out = batch.dir.filePath("out-terminal" + jobs), log = out + ".log";
        QStringList command{MbrunPath(), batch.model, "--set", "Scene folders=" + batch.scenes, "--set", "Output folder=" + out, "--jobs", jobs};
        for (QString& a : command)
            a = '\'' + a + '\'';
        QProcess terminal;
        terminal.start("script", {"-qec", command.join(' ') + " > '" + log + '\'', "/dev/null"});
        EXPECT_TRUE(terminal.waitForFinished(120000));
        EXPECT_FALSE(ReadAll(log).contains('\x1e'));
        EXPECT_EQ(Checksums(out), files[0]);
        return QString::fromUtf8(terminal.readAllStandardOutput());
    };
    const QString inTurn = onTerminal("1");
    EXPECT_TRUE(QRegularExpression("\r\\w+: [1-9]\\d*%, NDVI: \\d+%").match(inTurn).hasMatch()) << qPrintable(inTurn);
    const QString shown = onTerminal("2");
    QList<int> done;
    for (auto m = QRegularExpression("\rmbrun: (\\d) of 5 rounds done, [12] running").globalMatch(shown); m.hasNext();)
        done << m.next().captured(1).toInt();
    ASSERT_GE(done.size(), 2) << qPrintable(shown);
    EXPECT_EQ(done.first(), 0);
    EXPECT_GE(done.last(), 2) << qPrintable(shown);
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end())) << qPrintable(shown);
    EXPECT_TRUE(shown.contains("\r\x1b[Kmbrun: 1 of 5 rounds failed: ")) << qPrintable(shown); // the line gone first
    EXPECT_FALSE(shown.contains(QChar(0x1e)));
}

TEST(MbrunBatch, OneRoundRunsTheStepsOutsideTheIteratorOnlyWhereTheirOutputsAreMissing)
{
    SceneBatch batch;
    HeadlessModel m;
    ASSERT_TRUE(m.LoadFile(batch.model));
    const QString reference = batch.dir.filePath("reference.tif");
    AddStep(m, "raster.translate", {{"In File", batch.Scene(1)}, {"Out File", reference}});
    const QString model = batch.dir.filePath("prologue.apc");
    ASSERT_TRUE(m.SaveFile(model));
    const QStringList args{model, "--set", "Scene folders=" + batch.scenes, "--set", "Output folder=" + batch.out,
                           "--report", batch.report};
    struct Case { const char* name; QStringList more; bool removeFirst; std::string skipped; };
    const std::vector<Case> cases = {
        {"its output is missing", {"--round", "2"}, true, ""},
        {"its output is there", {"--round", "3"}, false, "0:raster.translate"},
        {"left out", {"--round", "1", "--no-prologue"}, true, "0:raster.translate"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.removeFirst)
            QFile::remove(reference);
        const Outcome o = Mbrun(args + c.more);
        EXPECT_EQ(o.code, 0) << qPrintable(o.out + o.err);
        const QJsonObject r = readReport(batch.report);
        EXPECT_EQ(stepsWithStatus(r, "skipped"), c.skipped);
        EXPECT_EQ(r["rounds"][0]["round"].toInt(), c.more[1].toInt());
        EXPECT_EQ(QFile::exists(reference), c.skipped.empty() || !c.removeFirst);
    }
}

// A signal stops every round running side by side; a process of rounds killed
// costs only its rounds. Nothing of the batch runs on once mbrun has ended.
TEST(MbrunBatch, AProcessOfRoundsStoppedOrKilledCostsOnlyItsRounds)
{
    // mbrun forks a server of processes, which forks the processes of rounds 1-2 and 3-4.
    enum Victim { Run, Server, LaterRounds };
    struct Case { const char* name; Victim victim; int signal; int code; const char* said; bool firstRoundsWritten; };
    const std::vector<Case> cases = {
        {"mbrun interrupted", Run, SIGINT, 130, "mbrun: SIGINT stopped the run; steps finished: ", false},
        {"mbrun killed", Run, SIGKILL, -1, "", false}, // its rounds stop and clean up with no one to tell
        {"the process of rounds 3-4", LaterRounds, SIGKILL, 2, "mbrun: the run of round 3 ended without a report (it was ended by signal 9)", true},
        {"the server", Server, SIGKILL, 2, "mbrun: the run of round 1 ended without a report (the process that starts the rounds ended)", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SceneBatch batch;
        for (int i = 1; i <= 4; ++i)
            MakeRaster(batch.Scene(i), 2500, 4); // a round takes a while
        QProcess p;
        p.start(MbrunPath(), batch.Args({"--jobs", "2", "--report", batch.report}));
        ASSERT_TRUE(WaitUntil([&] { return !hiddenIn(batch.out).isEmpty() || p.state() == QProcess::NotRunning; }, 60000));
        const QList<pid_t> servers = childrenOf(pid_t(p.processId()));
        ASSERT_EQ(servers.size(), 1);
        QList<pid_t> rounds = childrenOf(servers[0]);
        ASSERT_EQ(rounds.size(), 2) << "the rounds ended before one could be stopped";
        std::sort(rounds.begin(), rounds.end());
        const pid_t victim = c.victim == Run ? pid_t(p.processId()) : c.victim == LaterRounds ? rounds[1] : servers[0];
        ASSERT_EQ(::kill(victim, c.signal), 0);
        ASSERT_TRUE(p.waitForFinished(60000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        const QString err = QString::fromUtf8(p.readAllStandardError());
        EXPECT_EQ(p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, c.code) << qPrintable(err);
        EXPECT_TRUE(err.contains(c.said)) << qPrintable(err);
        // The rounds' processes end with the run, even one with no run left to tell.
        ASSERT_TRUE(WaitUntil([&] { return std::all_of(rounds.begin(), rounds.end(), ended); }, 30000));
        // An orphaned or unstopped round would still write its output.
        const QMap<QString, qint64> after = FileTimes(batch.out);
        QThread::msleep(1500);
        EXPECT_EQ(FileTimes(batch.out), after);
        if (c.victim != LaterRounds) { // a round killed outright cannot take its unfinished files away
            EXPECT_EQ(hiddenIn(batch.out).join(" "), "");
        }
        EXPECT_EQ(QFile::exists(batch.Ndvi(1)), c.firstRoundsWritten);
        EXPECT_FALSE(QFile::exists(batch.Ndvi(4)));
        if (c.signal == SIGINT) {
            EXPECT_TRUE(out.contains("\nEnd the model: scene_ndvi\n")) << qPrintable(out);
            EXPECT_FALSE(err.contains("without a report")) << qPrintable(err); // a round just starting stops as cleanly
            const QJsonObject r = readReport(batch.report);
            EXPECT_EQ(r["status"].toString(), "interrupted");
            EXPECT_EQ(r["signal"].toString(), "SIGINT");
            EXPECT_GE(r["summary"]["interrupted"].toInt(), 1);
        }
    }
}
