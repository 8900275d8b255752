// A batch handed to Snakemake: the real mbrun exports, the real snakemake runs the
// rounds, reruns only what changed or failed, and keeps finished rounds finished
// across a re-export.
#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

// What one snakemake run did: its exit code and the rounds it ran, by job name.
struct Snake
{
    int code = -1;
    QStringList rounds;
    QString said;
};

Snake snakemake(const QStringList& args)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("snakemake"), args);
    Snake s;
    if (!p.waitForFinished(300000))
        return s;
    s.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    s.said = QString::fromUtf8(p.readAll());
    // Each job a run starts is logged as "rule round:" followed by its wildcards.
    for (auto m = QRegularExpression("wildcards: round=(scene_\\d\\d)-").globalMatch(s.said); m.hasNext();)
        s.rounds << m.next().captured(1);
    s.rounds.sort();
    return s;
}

} // namespace

TEST(ClusterExport, SnakemakeRunsTheRoundsAsMbrunDoesAndRerunsOnlyWhatChangedOrFailed)
{
    if (QStandardPaths::findExecutable(QStringLiteral("snakemake")).isEmpty())
        GTEST_SKIP() << "snakemake is not installed";
    SceneBatch batch;
    WriteAll(batch.Scene(2), "not a raster"); // its round fails, the others go on
    const QString whole = batch.dir.filePath("whole");
    Outcome o = Mbrun({batch.model, "--set", "Scene folders=" + batch.scenes, "--set", "Output folder=" + whole});
    ASSERT_EQ(o.code, 1) << qPrintable(o.err);

    const QString flow = batch.dir.filePath("flow");
    o = Mbrun(batch.Args({"--export", "snakemake", flow}));
    ASSERT_EQ(o.code, 0) << qPrintable(o.err);
    EXPECT_TRUE(o.out.contains("snakemake --profile " + flow + "/profiles/local")) << qPrintable(o.out);
    const QStringList local{"--profile", flow + "/profiles/local"};

    // The failed round costs only itself: every other file is the whole run's.
    Snake s = snakemake(local);
    EXPECT_NE(s.code, 0);
    EXPECT_EQ(s.rounds, QStringList({"scene_01", "scene_02", "scene_03"})) << qPrintable(s.said);
    EXPECT_EQ(Checksums(batch.out), Checksums(whole));
    EXPECT_EQ(QDir(flow + "/rounds").entryList(QDir::Files).size(), 2); // no report of a failed job is kept

    // A rerun repeats the failed round alone; once its input is mended it succeeds.
    const QMap<QString, qint64> before = FileTimes(batch.out);
    s = snakemake(local);
    EXPECT_NE(s.code, 0);
    EXPECT_EQ(s.rounds, QStringList({"scene_02"})) << qPrintable(s.said);
    MakeRaster(batch.Scene(2), 8, 4);
    s = snakemake(local);
    EXPECT_EQ(s.code, 0) << qPrintable(s.said);
    EXPECT_EQ(s.rounds, QStringList({"scene_02"})) << qPrintable(s.said);
    EXPECT_TRUE(QFile::exists(batch.Ndvi(2)));
    // A changed input reruns its round only.
    MakeRaster(batch.Scene(3), 9, 4);
    s = snakemake(local);
    EXPECT_EQ(s.rounds, QStringList({"scene_03"})) << qPrintable(s.said);
    s = snakemake(local);
    EXPECT_EQ(s.code, 0);
    EXPECT_TRUE(s.rounds.isEmpty()) << qPrintable(s.said);
    EXPECT_EQ(FileTimes(batch.out).value(batch.Ndvi(1)), before.value(batch.Ndvi(1)));

    // A scene that sorts first shifts every round's number; re-exported, only it runs.
    MakeRaster(batch.Scene(0), 8, 4);
    o = Mbrun(batch.Args({"--export", "snakemake", flow}));
    ASSERT_EQ(o.code, 0) << qPrintable(o.err);
    s = snakemake(QStringList{"--profile", flow + "/profiles/slurm", "--dry-run"});
    EXPECT_EQ(s.code, 0) << qPrintable(s.said);
    EXPECT_EQ(s.rounds, QStringList({"scene_00"})) << qPrintable(s.said);
    s = snakemake(local);
    EXPECT_EQ(s.code, 0) << qPrintable(s.said);
    EXPECT_EQ(s.rounds, QStringList({"scene_00"})) << qPrintable(s.said);
    EXPECT_EQ(FileTimes(batch.out).value(batch.Ndvi(1)), before.value(batch.Ndvi(1)));
}
