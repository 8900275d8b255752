#include "HostCore/_ptr_t.h"
#include "HostShell/EnvironmentSetting.h"
#include "HostTask/IHostTask.h"
#include "engine/APCAlgo.h"
#include "engine/APCLog.h"
#include "engine/APCModelFile.h"
#include "engine/ClusterExport.h"
#include "engine/ModelNesting.h"
#include "engine/HeadlessAlgo.h"
#include "engine/ModelAlgo.h"
#include "engine/STModelAlgoData.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>
#include <QThreadPool>
#include <gtest/gtest.h>


using namespace Plugin;
using namespace TestSupport;
using TaskPtr = HostCore::_ptr_t<HostTask::IHostTask>;

namespace {

// An installation in a temporary folder: bin/ and Model/apc/ below the root.
class NestedModels : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir(m_dir.path()).mkpath("bin");
        QDir(m_dir.path()).mkpath("Model/apc");
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(m_dir.filePath("bin"));
    }
    void TearDown() override
    {
        QThreadPool::globalInstance()->waitForDone();
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
    }
    QString ModelPath(const QString& name) const { return m_dir.filePath("Model/apc/" + name); }
    QString File(const QString& name) const { return m_dir.filePath(name); }

    // copy.apc: copies its free input "Source" to its free output "Target".
    void WriteCopyModel()
    {
        TestSupport::HeadlessModel m;
        APCAlgo* step = AddAlgo(m, "test.copyText");
        VarOf(m, step, "In File")->SetDescription("Source");
        VarOf(m, step, "Out File")->SetDescription("Target");
        ASSERT_TRUE(m.SaveFile(ModelPath("copy.apc")));
    }

    QTemporaryDir m_dir;
};

STModelAlgoData dataOf(TaskPtr& task)
{
    return boost::any_cast<STModelAlgoData>(task->GetParams());
}

} // namespace

TEST_F(NestedModels, ParametersMirrorTheFreeVarsOfTheFileAtEveryLevelOfATree)
{
    WriteCopyModel();
    APCModelFile step;
    step.SetProcessName("Model/apc/copy.apc");
    EXPECT_EQ(step.GetModelPath(), m_dir.filePath("bin") + "/../Model/apc/copy.apc");
    ASSERT_EQ(step.GetParameters().size(), 2);
    EXPECT_EQ(step.GetParameters()[0].description, "Source");
    EXPECT_EQ(step.GetParameters()[0].direction, 0);
    EXPECT_EQ(step.GetParameters()[1].description, "Target");
    EXPECT_EQ(step.GetParameters()[1].direction, 1); // written inside the nested model
    EXPECT_TRUE(step.GetParameters()[0].value.startsWith("%{"));
    EXPECT_TRUE(step.Check());

    // Reloading keeps the stored values of parameters that still exist.
    step.GetParameters()[0].value = "kept";
    EXPECT_TRUE(step.LoadParameters());
    EXPECT_EQ(step.GetParameters()[0].value, "kept");
    EXPECT_FALSE(step.SetModelPath(File("missing.apc")));
    EXPECT_FALSE(step.Check());

    // pair.apc runs copy.apc twice; outer.apc runs pair.apc twice, its steps saved
    // without parameters. Loading it gives each step the parameters pair.apc offers,
    // with values of its own; a file changed between two loads is read anew.
    auto writePair = [&](int copies) {
        TestSupport::HeadlessModel pair;
        for (int i = 0; i < copies; ++i)
            AddModelStep(pair, "Model/apc/copy.apc");
        ASSERT_TRUE(pair.SaveFile(ModelPath("pair.apc")));
    };
    writePair(2);
    {
        TestSupport::HeadlessModel outer;
        AddModelStep(outer, "Model/apc/pair.apc")->GetParameters().clear();
        AddModelStep(outer, "Model/apc/pair.apc")->GetParameters().clear();
        ASSERT_TRUE(outer.SaveFile(ModelPath("outer.apc")));
    }
    APCModel loaded;
    ASSERT_TRUE(loaded.LoadFile(ModelPath("outer.apc")));
    ASSERT_EQ(loaded.GetProcesses().size(), 2);
    QSet<QString> values;
    for (APCProcess* nested : loaded.GetProcesses()) {
        ASSERT_EQ(nested->GetParameters().size(), 4);
        EXPECT_EQ(nested->GetParameters()[3].direction, 1);
        for (const APCParameter& p : nested->GetParameters())
            values.insert(p.value);
    }
    EXPECT_EQ(values.size(), 8);

    writePair(3);
    APCModel again;
    ASSERT_TRUE(again.LoadFile(ModelPath("outer.apc")));
    EXPECT_EQ(again.GetProcesses()[0]->GetParameters().size(), 6);
    auto* second = static_cast<APCModelFile*>(loaded.GetProcesses()[1]);
    EXPECT_TRUE(second->LoadParameters());
    EXPECT_EQ(second->GetParameters().size(), 6);
}

// The nested step fails with its inner step's error; the outer error is the last
// node's, the nested step staying "succeeded".
TEST_F(NestedModels, ValuesGoInAndFilesOrErrorsComeOut)
{
    WriteCopyModel();
    WriteAll(File("in.txt"), "nested payload");
    struct Case { const char* name; QString source; int code; QString inLog; };
    const std::vector<Case> cases = {
        {"a missing input", File("nothing.txt"), 10, "Error number: 10\nError message: Copy text file : Cannot open " + File("nothing.txt")},
        {"a good input", File("in.txt"), 0, "Result of execution: Succeed"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TestSupport::HeadlessModel outer;
        AddModelStep(outer, "Model/apc/copy.apc", {{"Source", c.source}, {"Target", File("out.txt")}});
        SequenceControl control;
        std::vector<double> progress;
        control.NodeProgress.connect([&](SequenceNode*, double v) { progress.push_back(v); });
        const RunResult r = RunModel(control, outer);
        ASSERT_TRUE(r.finished);
        EXPECT_TRUE(r.log.contains("Algorithm: model\n"));
        EXPECT_TRUE(r.log.contains(c.inLog)) << qPrintable(r.log);
        EXPECT_EQ(r.code, c.code);
        EXPECT_EQ(ReadAll(File("out.txt")), c.code ? QByteArray() : QByteArray("nested payload"));
        if (c.code == 0) {
            EXPECT_EQ(progress.empty() ? -1.0 : progress.back(), 100.0);
        }
    }
}

TEST_F(NestedModels, AModelThatContainsItselfFailsCleanly)
{
    TestSupport::HeadlessModel self; // its step names the very file it is in
    AddModelStep(self, "Model/apc/self.apc");
    ASSERT_TRUE(self.SaveFile(ModelPath("self.apc")));

    TestSupport::HeadlessModel loaded;
    ASSERT_TRUE(loaded.LoadFile(ModelPath("self.apc")));
    ASSERT_EQ(loaded.GetProcesses().size(), 1);
    EXPECT_FALSE(loaded.GetProcesses()[0]->Check());

    // Run anyway: the nested copy of itself is found invalid instead of recursing.
    TestSupport::HeadlessModel outer;
    APCModelFile* nestedStep = AddModelStep(outer, "Model/apc/self.apc");
    EXPECT_FALSE(nestedStep->Check());
    EXPECT_FALSE(nestedStep->Execute());
    SequenceControl control;
    const RunResult r = RunModel(control, outer);
    ASSERT_TRUE(r.finished);
    EXPECT_TRUE(r.log.contains("Algorithm: model\n"));
}

TEST_F(NestedModels, StoppingTheOuterRunReleasesTheNestedOne)
{
    TestSupport::HeadlessModel nested;
    APCAlgo* sleep = AddAlgo(nested, "test.sleep");
    SetLiteral(nested, sleep, "Milliseconds", "300");
    AddAlgo(nested, "test.sleep");
    ASSERT_TRUE(nested.SaveFile(ModelPath("slow.apc")));

    TestSupport::HeadlessModel outer;
    AddModelStep(outer, "Model/apc/slow.apc");
    SequenceControl control;
    control.SetName("outer");
    control.Build(&outer);
    control.Start();
    WaitUntil([] { return false; }, 100);
    control.Stop();
    // Without the release the pool thread would wait in the nested loop forever.
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(5000));
    EXPECT_TRUE(control.GetLog()->GetLogText().contains("End the model: outer"));
}

// The info object lists the parameters of a model file and the run object runs it
// with values for them; a record that does not fit is refused with code 100.
TEST_F(NestedModels, HeadlessObjectsAsAHostCallsThem)
{
    WriteCopyModel();
    EXPECT_EQ(Plugin::CreateHeadlessAlgo("modelalgo"), nullptr);
    TaskPtr info(Plugin::CreateHeadlessAlgo("ModelAlgoInfo"));
    ASSERT_TRUE(info);
    STModelAlgoData request;
    request.file = ModelPath("copy.apc");
    info->SetParams(request);
    ASSERT_TRUE(info->Execute());
    STModelAlgoData inputs = dataOf(info);
    ASSERT_EQ(inputs.params.size(), 2);
    EXPECT_EQ(inputs.params[0].description, "Source");
    EXPECT_EQ(inputs.params[0].type, "file");
    EXPECT_TRUE(inputs.params[0].value.isEmpty());

    STModelAlgoData missingFile;
    missingFile.file = File("none.apc");
    STModelAlgoData shortList = inputs;
    shortList.params.removeLast();
    STModelAlgoData unknownName = inputs;
    unknownName.params[1].name = "b";
    struct Case { const char* name; const char* object; boost::any slot; int code; };
    const std::vector<Case> cases = {
        {"info: empty slot", "ModelAlgoInfo", boost::any(), 100},
        {"info: missing file is silent", "ModelAlgoInfo", boost::any(missingFile), 0},
        {"run: empty slot", "ModelAlgo", boost::any(), 100},
        {"run: missing file", "ModelAlgo", boost::any(missingFile), 100},
        {"run: wrong count", "ModelAlgo", boost::any(shortList), 100},
        {"run: unknown name", "ModelAlgo", boost::any(unknownName), 100},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TaskPtr task(Plugin::CreateHeadlessAlgo(c.object));
        task->SetParams(c.slot);
        EXPECT_FALSE(task->Execute());
        int code = -1;
        QString message;
        task->GetErrorInfo(code, message);
        EXPECT_EQ(code, c.code);
        EXPECT_TRUE(message.isEmpty());
    }

    WriteAll(File("in.txt"), "headless");
    inputs.params[0].value = File("in.txt");
    inputs.params[1].value = File("out.txt");
    TaskPtr run(Plugin::CreateHeadlessAlgo("ModelAlgo"));
    std::vector<double> progress;
    run->Progress.connect([&](double v, const QString&, void*) { progress.push_back(v); return 0; });
    run->SetParams(inputs);
    EXPECT_TRUE(run->Execute());
    EXPECT_EQ(ReadAll(File("out.txt")), QByteArray("headless"));
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), 100.0);
}

// A model with no iterator goes to the cluster as one job, which reruns when any
// model file it runs changes; a folder that cannot be made is said, not written.
TEST_F(NestedModels, AClusterExportOfNestedModelsListsEveryModelFileInOneJob)
{
    WriteCopyModel();
    TestSupport::HeadlessModel outer;
    AddModelStep(outer, "Model/apc/copy.apc", {{"Source", File("in.txt")}, {"Target", File("out.txt")}});
    AddModelStep(outer, "Model/apc/copy.apc", {{"Source", File("out.txt")}, {"Target", File("again.txt")}});
    ASSERT_TRUE(outer.SaveFile(ModelPath("outer.apc")));
    ClusterExport workflow(ModelPath("outer.apc"), {}, "/opt/mb/mbrun");
    QString error;
    ASSERT_TRUE(workflow.Plan(outer, {}, &error)) << qPrintable(error);
    EXPECT_FALSE(workflow.HasIterator());
    EXPECT_EQ(ModelNesting::Files(ModelPath("outer.apc")),
              QStringList({QFileInfo(ModelPath("outer.apc")).absoluteFilePath(), QFileInfo(ModelPath("copy.apc")).absoluteFilePath()}));
    ASSERT_TRUE(workflow.Write(File("flow"), &error)) << qPrintable(error);
    const QByteArray snakefile = ReadAll(File("flow/Snakefile"));
    EXPECT_TRUE(snakefile.contains("no iterator")) << snakefile.constData();
    EXPECT_TRUE(snakefile.contains(QFileInfo(ModelPath("copy.apc")).absoluteFilePath().toUtf8()));

    WriteAll(File("taken"), "a file where the folder would go");
    EXPECT_FALSE(workflow.Write(File("taken"), &error));
    EXPECT_TRUE(error.contains("cannot make the folder")) << qPrintable(error);
}
