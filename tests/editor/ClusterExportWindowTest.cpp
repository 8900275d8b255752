// Model > Export for a cluster..., driven on the real window as a user would.
#include "dialogs/RunCmdDlg.h"
#include "editor/ModelControler.h"
#include "engine/SequenceControl.h"
#include "support/GuiDriver.h"
#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QAction>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTabWidget>
#include <QTest>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

void click(QWidget* root, const QString& text)
{
    for (QAbstractButton* b : root->findChildren<QAbstractButton*>())
        if (b->text() == text && b->isVisible())
            return QTest::mouseClick(b, Qt::LeftButton);
    ADD_FAILURE() << "no button " << text.toStdString();
}

void pick(QWidget* picker, const QString& path)
{
    auto* files = qobject_cast<QFileDialog*>(picker);
    ASSERT_TRUE(files);
    auto* name = files->findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(name);
    name->setText(path);
    QTest::keyClick(name, Qt::Key_Return);
}

// Answers the run dialog with the scenes and the output folder, then runs next
// on the modal window that follows it.
void answerInputs(const TestSupport::SceneBatch& batch, std::function<void(QWidget*)> next)
{
    OnNextModal([&batch, next](QWidget* w) {
        auto* dialog = qobject_cast<RunCmdDlg*>(w);
        ASSERT_TRUE(dialog);
        auto* tabs = dialog->findChild<QTabWidget*>();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QWidget* page = tabs->widget(i);
            if (tabs->tabText(i) == "Scene folders") {
                OnNextModal([&batch](QWidget* picker) { pick(picker, batch.scenes); });
                click(page, "Add...");
                continue;
            }
            QTest::keyClicks(page->findChild<QLineEdit*>(), batch.out);
        }
        if (next)
            OnNextModal(next);
        click(dialog, "OK");
    });
}

// Closes the next message box with OK, keeping its text.
std::function<void(QWidget*)> readMessage(QString* text)
{
    return [text](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_TRUE(box);
        *text = box->text();
        box->button(QMessageBox::Ok) ? box->button(QMessageBox::Ok)->click() : box->buttons().first()->click();
    };
}

} // namespace

TEST(ClusterExportWindow, AsksTheInputsAndAFolderWritesTheWorkflowAndTellsTheCommand)
{
    TestSupport::SceneBatch batch;
    ModelControler window(batch.model, false);
    QAction* exportAction = GuiDriver::Action(&window, "Export for a cluster...");
    ASSERT_TRUE(exportAction);

    // Not while a run goes on.
    QString said;
    answerInputs(batch, nullptr);
    GuiDriver::Action(&window, "Run")->trigger();
    ASSERT_EQ(window.GetSequenceControl()->GetState(), SequenceControl::Running);
    OnNextModal(readMessage(&said));
    exportAction->trigger();
    EXPECT_EQ(said, "The model is running: export it when the run has ended.");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }, 60000));

    const QString flow = batch.dir.filePath("flow");
    QDir().mkpath(flow);
    answerInputs(batch, [&](QWidget* picker) {
        OnNextModal(readMessage(&said));
        pick(picker, flow);
    });
    exportAction->trigger();
    EXPECT_EQ(said, "The workflow is written. Run it on this machine with:\n\nsnakemake --profile " + flow + "/profiles/local");
    const QString snakefile = QString::fromUtf8(TestSupport::ReadAll(flow + "/Snakefile"));
    EXPECT_TRUE(snakefile.contains("\"" + TestSupport::MbrunPath() + "\"")) << qPrintable(snakefile);
    EXPECT_TRUE(snakefile.contains(batch.scenes)) << qPrintable(snakefile);
    const QStringList rounds = QString::fromUtf8(TestSupport::ReadAll(flow + "/rounds.tsv")).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(rounds.size(), 4);
    EXPECT_TRUE(rounds[3].startsWith("scene_03-")) << qPrintable(rounds[3]);
    for (const char* profile : {"local", "slurm", "cluster"})
        EXPECT_TRUE(QFile::exists(flow + "/profiles/" + profile + "/config.yaml")) << profile;
}
