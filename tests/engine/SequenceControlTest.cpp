#include "engine/APCAlgo.h"
#include "engine/APCExecuteFactory.h"
#include "engine/APCLog.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/ModelRun.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThreadPool>
#include <gtest/gtest.h>

using namespace Plugin;
using namespace TestSupport;

namespace {

const QString kBanner = "=============================";

QString block(const QString& name, const QString& description, const QString& params, bool ok = true,
              int code = 0, const QString& message = QString())
{
    QString text = "\n" + kBanner + "Start " + description + kBanner + "\n" + "Algorithm: " + name + "\n" +
                   "Description: " + description + "\n" + "Parameter: " + params + "\n";
    if (ok)
        text += "Result of execution: Succeed\n";
    else
        text += "Result of execution: Fail\nError number: " + QString::number(code) + "\nError message: " + message + "\n";
    return text + kBanner + "End " + description + kBanner + "\n";
}

QString summary(int ok, int failed)
{
    return "\n" + kBanner + "Generate: Succeed: " + QString::number(ok) + ", Fail: " + QString::number(failed) + " " +
           kBanner + "\n";
}

// A chain in -> A -> mid -> B -> out of text copies, with files in dir; in, the
// free input "a", is given in.txt.
struct CopyChain
{
    TestSupport::HeadlessModel model;
    APCAlgo* a = nullptr;
    APCAlgo* b = nullptr;
    APCVar* mid = nullptr;
    APCVar given;

    explicit CopyChain(const QTemporaryDir& dir)
    {
        a = AddStep(model, "test.copyText", {{"Out File", dir.filePath("mid.txt")}});
        b = AddStep(model, "test.copyText", {{"Out File", dir.filePath("out.txt")}});
        mid = VarOf(model, a, "Out File");
        Connect(model, mid, b, "In File");
        VarOf(model, a, "In File")->SetDescription("a");
        given.SetName(VarOf(model, a, "In File")->GetName());
        given.SetValue(dir.filePath("in.txt"));
        WriteAll(dir.filePath("in.txt"), "payload");
    }
};

} // namespace

// Engine cases run at 1, 2 and 4 pool threads.
class Engine : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        m_saved = QThreadPool::globalInstance()->maxThreadCount();
        QThreadPool::globalInstance()->setMaxThreadCount(GetParam());
    }
    void TearDown() override
    {
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(m_saved);
    }
    int m_saved = 0;
};

INSTANTIATE_TEST_SUITE_P(Threads, Engine, ::testing::Values(1, 2, 4));

TEST_P(Engine, ChainPassesFilesAndLogsExactlyAndAFailureEndsIt)
{
    QTemporaryDir dir;
    CopyChain chain(dir);
    SequenceControl control;
    std::vector<int> statuses;
    control.NodeStatus.connect([&](SequenceNode*, int s) { statuses.push_back(s); });
    const RunResult r = RunModel(control, chain.model, {&chain.given});
    ASSERT_TRUE(r.finished);
    EXPECT_EQ(r.finishes, 1);
    EXPECT_TRUE(r.errors.isEmpty());
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(statuses, (std::vector<int>{1, 2, 1, 2, 0, 0}));
    EXPECT_EQ(control.GetState(), SequenceControl::Idle);
    EXPECT_EQ(ReadAll(dir.filePath("out.txt")), QByteArray("payload"));
    const QString params = QStringLiteral("{\"In File\":\"%1\",\"Out File\":\"%2\"}");
    // The free input shows in the start line, with the word twice.
    EXPECT_EQ(r.log, "Start the model: m\nParameter: Parameter: a = " + dir.filePath("in.txt") + "\n" +
                         block("test.copyText", "Copy text file", params.arg(dir.filePath("in.txt"), dir.filePath("mid.txt"))) +
                         block("test.copyText", "Copy text file", params.arg(dir.filePath("mid.txt"), dir.filePath("out.txt"))) +
                         summary(2, 0));

    // A failure outside an iteration ends the run: B never runs.
    for (const char* file : {"in.txt", "mid.txt", "out.txt"})
        QFile::remove(dir.filePath(file));
    SequenceControl again;
    const RunResult failed = RunModel(again, chain.model, {&chain.given});
    ASSERT_TRUE(failed.finished);
    const QString message = "Cannot open " + dir.filePath("in.txt");
    EXPECT_EQ(failed.code, 10);
    EXPECT_EQ(failed.message, "Copy text file : " + message);
    EXPECT_TRUE(failed.log.contains("Result of execution: Fail\nError number: 10\nError message: " + message + "\n"));
    EXPECT_TRUE(failed.log.endsWith(summary(0, 1)));
    EXPECT_TRUE(failed.errors.startsWith("\n" + kBanner + "Start Copy text file"));
    EXPECT_EQ(failed.log.count("Start Copy text file"), 1);
    EXPECT_FALSE(QFile::exists(dir.filePath("out.txt")));
}

TEST_P(Engine, JoinRunsOnceAfterBothPredecessors)
{
    QTemporaryDir dir;
    TestSupport::HeadlessModel model;
    APCAlgo* w1 = AddStep(model, "test.appendLine", {{"Text", "one"}, {"Out File", dir.filePath("1.txt")}});
    APCAlgo* w2 = AddStep(model, "test.appendLine", {{"Text", "two"}, {"Out File", dir.filePath("2.txt")}});
    // The reader copies 1.txt and needs 2.txt's writer done as well: join through
    // a second input arrow from 2.txt's var to an unused parameter.
    APCAlgo* reader = AddStep(model, "test.copyText", {{"Out File", dir.filePath("joined.txt")}});
    Connect(model, VarOf(model, w1, "Out File"), reader, "In File");
    AddArrow(model, VarOf(model, w2, "Out File"), "", reader, "Unused");

    SequenceControl control;
    int readerRuns = 0;
    control.NodeStatus.connect([&](SequenceNode* n, int s) {
        if (n->GetProcess()->GetName() == reader->GetName() && s == 1)
            ++readerRuns;
    });
    const RunResult r = RunModel(control, model);
    ASSERT_TRUE(r.finished);
    EXPECT_EQ(readerRuns, 1) << qPrintable(r.log);
    EXPECT_EQ(ReadAll(dir.filePath("joined.txt")), QByteArray("one\n"));
    EXPECT_TRUE(r.log.endsWith(summary(3, 0)));
}

TEST_P(Engine, PauseHoldsBackTheNextStepUntilStart)
{
    QTemporaryDir dir;
    TestSupport::HeadlessModel model;
    APCAlgo* slow = AddStep(model, "test.sleep", {{"Milliseconds", "300"}});
    APCAlgo* copy = AddStep(model, "test.copyText", {{"In File", dir.filePath("in.txt")}, {"Out File", dir.filePath("out.txt")}});
    WriteAll(dir.filePath("in.txt"), "x");
    // copy waits for slow through a var slow writes: give slow an output arrow.
    AddArrow(model, slow, "Done", VarOf(model, copy, "In File"), "");

    SequenceControl control;
    ModelRun run(control, model);
    ASSERT_TRUE(run.Start({}, "p"));
    control.Pause();
    EXPECT_EQ(control.GetState(), SequenceControl::Paused);
    ASSERT_TRUE(WaitUntil([&] { return control.GetLog()->GetLogText().contains("End Sleep"); }));
    WaitUntil([] { return false; }, 100);
    EXPECT_FALSE(control.GetLog()->GetLogText().contains("Start Copy text file"));
    EXPECT_EQ(control.GetState(), SequenceControl::Paused);
    control.Start();
    ASSERT_TRUE(WaitUntil([&] { return control.GetState() == SequenceControl::Idle; }));
    const QString log = control.GetLog()->GetLogText();
    EXPECT_TRUE(log.contains("\nPause the model: p\n"));
    EXPECT_LT(log.indexOf("End Sleep"), log.indexOf("\nContinue the model: p\n"));
    EXPECT_LT(log.indexOf("Continue the model"), log.indexOf("Start Copy text file"));
    EXPECT_TRUE(log.endsWith(summary(2, 0)));
}

TEST_P(Engine, StopWhileAStepRunsFinishesAtOnceAndAllowsANewRun)
{
    TestSupport::HeadlessModel model;
    APCAlgo* slow = AddAlgo(model, "test.sleep");
    SetLiteral(model, slow, "Milliseconds", "400");
    SequenceControl control;
    int finishes = 0;
    control.NodeFinished.connect([&](SequenceNode* n) { if (!n) ++finishes; });
    ModelRun(control, model).Start({}, "s");
    control.Stop();
    EXPECT_EQ(control.GetState(), SequenceControl::Idle);
    EXPECT_EQ(finishes, 1);
    EXPECT_EQ(control.GetLog()->GetLogText(), "Start the model: s\n\nEnd the model: s\n" + summary(0, 0));
    // A new build while the stopped step still sleeps on its pool thread.
    control.Build(&model);
    control.Start();
    ASSERT_TRUE(WaitUntil([&] { return finishes == 2; }));
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(control.GetLog()->GetLogText().endsWith(summary(1, 0)));
}

TEST_P(Engine, SecondWriterOfAVarLeavesNothingToStart)
{
    TestSupport::HeadlessModel model;
    APCAlgo* a = AddAlgo(model, "test.appendLine");
    APCAlgo* b = AddAlgo(model, "test.appendLine");
    AddArrow(model, b, "Out File", VarOf(model, a, "Out File"), "");
    SequenceControl control;
    EXPECT_FALSE(ModelRun(control, model).Start({}, "bad")); // refused before it starts
    EXPECT_TRUE(control.GetBuildError().contains("is written by two steps")) << qPrintable(control.GetBuildError());
    EXPECT_EQ(control.GetState(), SequenceControl::Idle);
    // Start itself keeps its old way: a run with nothing to start.
    control.Start();
    WaitUntil([] { return false; }, 100);
    EXPECT_EQ(control.GetState(), SequenceControl::Running);
    EXPECT_TRUE(control.GetLog()->GetLogText().startsWith("Start the model: bad\n"));
    EXPECT_FALSE(control.GetLog()->GetLogText().contains(kBanner));
    control.Stop();
    EXPECT_EQ(control.GetState(), SequenceControl::Idle);
}

TEST_P(Engine, IteratorRepeatsTheStepsBehindItForEveryFile)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkdir("scenes");
    for (const char* name : {"a1.tif", "a2.tif", "a3.tif", "skip.txt"})
        WriteAll(dir.filePath(QStringLiteral("scenes/") + name), name);
    TestSupport::HeadlessModel model;
    auto* it = new APCRasterFileIterator;
    it->SetDescription("Scenes");
    model.AddProcess(it);
    APCVar* dirVar = model.GetVars()[0];
    SetConstant(dirVar, QStringLiteral(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(dir.filePath("scenes")));
    APCVar* file = model.GetVars()[1];
    APCAlgo* append = AddAlgo(model, "test.appendLine");
    Connect(model, file, append, "Text");
    SetConstant(VarOf(model, append, "Out File"), dir.filePath("seen.txt"));

    SequenceControl control;
    const RunResult r = RunModel(control, model);
    ASSERT_TRUE(r.finished);
    EXPECT_EQ(ReadAll(dir.filePath("seen.txt")),
              (dir.filePath("scenes/a1.tif") + "\n" + dir.filePath("scenes/a2.tif") + "\n" + dir.filePath("scenes/a3.tif") + "\n").toUtf8());
    EXPECT_EQ(r.log.count("Start Scenes"), 3);
    EXPECT_EQ(r.log.count("Start Append a line"), 3);
    EXPECT_TRUE(r.log.endsWith(summary(6, 0)));
    EXPECT_EQ(r.code, 0); // the last node in list order reported success
    EXPECT_EQ(it->GetIteratorState(), 0); // the model's own iterator is untouched
}

TEST_P(Engine, FailureInsideAnIterationCostsOnePassOnly)
{
    QTemporaryDir dir;
    for (const char* name : {"a.tif", "b.tif", "c.tif"})
        WriteAll(dir.filePath(name), name);
    TestSupport::HeadlessModel model;
    auto* it = new APCRasterFileIterator;
    model.AddProcess(it);
    SetConstant(model.GetVars()[0], QStringLiteral(R"({"%1":{"subdir":"0","enabled":"1"}})").arg(dir.path()));
    APCVar* file = model.GetVars()[1];
    APCAlgo* copy = AddAlgo(model, "test.copyText");
    Connect(model, file, copy, "In File");
    // b.tif's copy target is a directory: that pass fails, the others go on.
    QDir(dir.path()).mkdir("out");
    QDir(dir.path()).mkdir("out/b.tif");
    APCVar* target = VarOf(model, copy, "Out File");
    target->SetFunExp("$ReplaceDirectory('" + dir.filePath("out") + "', %" + file->GetName() + "%)");

    SequenceControl control;
    const RunResult r = RunModel(control, model);
    ASSERT_TRUE(r.finished);
    ASSERT_NE(target->GetFun(), nullptr); // the expression is bound, so every pass had its own target
    EXPECT_EQ(ReadAll(dir.filePath("out/a.tif")), QByteArray("a.tif"));
    EXPECT_EQ(ReadAll(dir.filePath("out/c.tif")), QByteArray("c.tif"));
    EXPECT_TRUE(r.log.endsWith(summary(5, 1)));
}
