// Model > Export for a cluster..., driven on the real window as a user would.
#include "dialogs/RunCmdDlg.h"
#include "editor/ModelControler.h"
#include "engine/SequenceControl.h"
#include "support/GuiDriver.h"
#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QAction>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

// Answers the run dialog with the scenes and the output folder, then runs next
// on the modal window that follows it.
void answerInputs(const TestSupport::SceneBatch& batch, std::function<void(QWidget*)> next)
{
    OnNextModal([&batch, next](QWidget* dialog) {
        ASSERT_TRUE(qobject_cast<RunCmdDlg*>(dialog));
        GuiDriver::AnswerRunTabs(
            dialog, [&](const QString& title) { return title == "Scene folders" ? batch.scenes : batch.out; }, next);
    });
}

} // namespace

TEST(ClusterExportWindow, AsksTheInputsAndAFolderWritesTheWorkflowAndTellsTheCommand)
{
    TestSupport::SceneBatch batch;
    ModelControler window(batch.model, false);
    QAction* exportAction = GuiDriver::Action(&window, "Export for a cluster...");
    ASSERT_TRUE(exportAction);

    // Not while a run goes on.
    GuiDriver::Message said;
    answerInputs(batch, nullptr);
    GuiDriver::Action(&window, "Run")->trigger();
    ASSERT_EQ(window.GetSequenceControl()->GetState(), SequenceControl::Running);
    GuiDriver::AnswerMessage(&said);
    exportAction->trigger();
    EXPECT_EQ(said.text, "The model is running: export it when the run has ended.");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }, 60000));

    const QString flow = batch.dir.filePath("flow");
    QDir().mkpath(flow);
    answerInputs(batch, [&](QWidget* picker) {
        GuiDriver::AnswerMessage(&said);
        GuiDriver::PickPath(picker, flow);
    });
    exportAction->trigger();
    EXPECT_EQ(said.text, "The workflow is written. Run it on this machine with:\n\nsnakemake --profile " + flow + "/profiles/local");
    const QString snakefile = QString::fromUtf8(TestSupport::ReadAll(flow + "/Snakefile"));
    EXPECT_TRUE(snakefile.contains("\"" + TestSupport::MbrunPath() + "\"")) << qPrintable(snakefile);
    EXPECT_TRUE(snakefile.contains(batch.scenes)) << qPrintable(snakefile);
    const QStringList rounds = QString::fromUtf8(TestSupport::ReadAll(flow + "/rounds.tsv")).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(rounds.size(), 4);
    EXPECT_TRUE(rounds[3].startsWith("scene_03-")) << qPrintable(rounds[3]);
    for (const char* profile : {"local", "slurm", "cluster"})
        EXPECT_TRUE(QFile::exists(flow + "/profiles/" + profile + "/config.yaml")) << profile;
}
