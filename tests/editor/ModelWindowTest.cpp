// The model window: its menus and their enable rules, runs into the log panels,
// zooms, saving, deleting, closing; and the run dialog of a model with free inputs.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/RunCmdDlg.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "engine/APCLog.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDockWidget>
#include <QGraphicsItem>
#include <QLineEdit>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::OnNextModal;
using GuiDriver::Action;
using TestSupport::WaitUntil;

namespace {

QString panelText(ModelControler& window, int panel)
{
    auto* dock = window.findChild<QDockWidget*>();
    auto* tabs = dock ? qobject_cast<QTabWidget*>(dock->widget()) : nullptr;
    auto* log = tabs ? qobject_cast<QTextEdit*>(tabs->widget(panel)) : nullptr;
    return log ? log->toPlainText() : QString();
}

} // namespace

class ModelWindow : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(TestSupport::WriteAll(path(), TestSupport::kStepAndThreeVars)); }
    QString path() const { return dir.filePath("m.apc"); }
    QTemporaryDir dir;
    ModelCommandManager* manager = ModelCommandManager::Instance();
};

TEST_F(ModelWindow, MenusAndEnableRulesFollowTheWindowAndTheRun)
{
    ModelControler window(path(), false);
    EXPECT_EQ(window.windowTitle(), "Model Builder");
    EXPECT_EQ(GuiDriver::MenuEntries(&window), QStringList({"Model", "Edit", "Insert", "View"}));
    EXPECT_EQ(Action(&window, "Delete")->shortcut(), QKeySequence(QKeySequence::Delete));
    EXPECT_EQ(manager->FindCommand(Action(&window, "Select")), window.GetCurrentTool());
    EXPECT_FALSE(window.findChild<QDockWidget*>()->isVisible());
    manager->OnUpdateState();
    EXPECT_FALSE(Action(&window, "Save")->isEnabled()); // nothing to save
    EXPECT_FALSE(Action(&window, "Copy")->isEnabled()); // nothing selected
    EXPECT_TRUE(Action(&window, "Run")->isEnabled());
    EXPECT_FALSE(Action(&window, "Pause")->isEnabled());
    EXPECT_FALSE(Action(&window, "Stop")->isEnabled());
    EXPECT_TRUE(Action(&window, "Select")->isChecked());
    EXPECT_FALSE(Action(&window, "Pan")->isChecked());

    // A tool shows checked at the next tick, not at once.
    Action(&window, "Pan")->trigger();
    EXPECT_FALSE(Action(&window, "Pan")->isChecked());
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Pan")->isChecked());
    EXPECT_FALSE(Action(&window, "Select")->isChecked());

    // Under the pan tool nothing can be selected; back to the select tool.
    window.GetScene()->GetItems().first()->setSelected(true);
    EXPECT_TRUE(window.GetScene()->selectedItems().isEmpty());
    Action(&window, "Select")->trigger();
    window.SetModified(true);
    window.GetScene()->GetItems().first()->setSelected(true);
    QApplication::clipboard()->setText("some text of another program");
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Save")->isEnabled());
    EXPECT_TRUE(Action(&window, "Copy")->isEnabled());
    EXPECT_FALSE(Action(&window, "Paste")->isEnabled());
    QApplication::clipboard()->setText("ModelBuilder$$<Vars/>");
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Paste")->isEnabled());

    ModelControler readOnly(path(), true);
    readOnly.SetModified(true);
    manager->OnUpdateState();
    for (const char* caption : {"Save", "Paste", "Delete", "Add Variable", "Connect"})
        EXPECT_FALSE(Action(&readOnly, caption)->isEnabled()) << caption;
    EXPECT_TRUE(Action(&readOnly, "Run")->isEnabled()); // a read-only model runs
}

TEST_F(ModelWindow, SaveOnAFullDiskKeepsTheOldFileWhole)
{
    const QByteArray before = TestSupport::ReadAll(path());
    ModelControler window(path(), false);
    window.GetDocument()->FindVar("{out}")->SetDescription("Renamed");
    window.SetModified(true);
    {
        const TestSupport::FileSizeLimit full(before.size() / 2);
        Action(&window, "Save")->trigger();
    }
    EXPECT_FALSE(window.IsModified()); // saving stays silent, whatever it gave
    EXPECT_EQ(TestSupport::ReadAll(path()), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"m.apc"}); // no temporary left
}



TEST(RunDialog, RefusesAnEmptyTabByItsTitleTakesBlanksAndCancels)
{
    RunCmdDlg dialog(nullptr);
    EXPECT_EQ(dialog.windowTitle(), "Run");
    auto* tabs = dialog.findChild<QTabWidget*>();
    ASSERT_TRUE(tabs);
    EXPECT_EQ(tabs->count(), 0); // the drawn placeholders are gone
    for (const char* title : {"Scene", "Scene"}) {
        DataTypeWidget* w = DataTypeFactory::CreateDataTypeWidget("string", "");
        w->SetCaption(title);
        dialog.AddPage(w, title);
    }
    tabs->setCurrentIndex(1);
    auto* first = qobject_cast<DataTypeWidget*>(tabs->widget(0));
    first->SetValue("given");

    GuiDriver::Message message;
    GuiDriver::AnswerMessage(&message);
    OnNextModal([&](QWidget*) {}); // the dialog itself
    QTimer::singleShot(0, [&] { GuiDriver::ClickText(&dialog, "OK"); });
    QTimer::singleShot(300, [&] {
        // The second tab is empty: named by its title, and the dialog stays.
        EXPECT_EQ(message.text, "Please set value: Scene");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(tabs->currentIndex(), 1);
        auto* edit = tabs->widget(1)->findChild<QLineEdit*>();
        ASSERT_TRUE(edit);
        QTest::keyClicks(edit, "  "); // blanks count as a value
        GuiDriver::ClickText(&dialog, "OK");
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);

    RunCmdDlg cancelled(nullptr);
    QTimer::singleShot(0, [&] { GuiDriver::ClickText(&cancelled, "Cancel"); });
    EXPECT_EQ(cancelled.exec(), QDialog::Rejected);
}

// Each shipped model, opened in its window and run on the sample scenes into a
// fresh folder, with its inputs given in the run dialog as a user gives them.
TEST(RunDialog, EveryShippedModelRunsFromItsWindow)
{
    const QString models = QCoreApplication::applicationDirPath() + "/../Model/apc/";
    const QString scenes = QStringLiteral(MB_SOURCE_DIR "/examples/data/scenes");
    QTemporaryDir out;
    struct Case { const char* model; QStringList outputs; };
    const std::vector<Case> cases = {
        {"scene_ndvi.apc", {"scene_01_ndvi.tif", "scene_02_ndvi.tif", "scene_03_ndvi.tif"}},
        {"batch_nested.apc", {"scene_01_nested.tif", "scene_02_nested.tif", "scene_03_nested.tif"}},
        {"ndvi_one.apc", {"one.tif"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.model);
        ModelControler window(models + c.model, false);
        window.SetModelName(c.model);
        OnNextModal([&](QWidget* dialog) {
            ASSERT_TRUE(qobject_cast<RunCmdDlg*>(dialog));
            GuiDriver::AnswerRunTabs(dialog, [&](const QString& title) {
                return title == "Scene folders" ? scenes
                       : title == "Scene"       ? scenes + "/scene_01.tif"
                       : title == "NDVI file"   ? out.filePath("one.tif")
                                                : out.path();
            });
        });
        GuiDriver::Action(&window, "Run")->trigger();
        ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == 0; }, 60000));
        EXPECT_TRUE(window.findChild<QDockWidget*>()->isVisibleTo(&window)); // a run shows the log
        const QString log = panelText(window, 0);
        EXPECT_TRUE(log.startsWith(QString("Start the model: ") + c.model + "\n")) << qPrintable(log);
        EXPECT_TRUE(log.contains("Fail: 0")) << qPrintable(log);
        EXPECT_EQ(log, window.GetSequenceControl()->GetLog()->GetLogText());
        EXPECT_EQ(panelText(window, 1), "");
        EXPECT_FALSE(window.IsModified()); // a run is not an edit
        for (const QString& file : c.outputs)
            EXPECT_TRUE(QFileInfo::exists(out.filePath(file))) << file.toStdString();
    }
}

TEST_F(ModelWindow, FixedZoomsKeepTheScaleAndTheViewInStep)
{
    ModelControler window(path(), false);
    window.resize(800, 500);
    QAction* out = Action(&window, "Fixed Zoom Out");
    for (int i = 0; i < 12; ++i)
        out->trigger();
    // Stops at the last step that is not below 0.001: nine halvings from 1.0.
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 0.001953125);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().m11(), 0.001953125);

    Action(&window, "Fixed Zoom In")->trigger();
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 0.001953125 * 1.5);

    window.GetView()->translate(30, 20);
    const QTransform before = window.GetView()->transform();
    Action(&window, "1:1")->trigger();
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 1.0);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().m11(), 1.0);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().dx(), before.dx()); // the scroll offset stays

    Action(&window, "Full Extent")->trigger();
    EXPECT_GT(window.GetScene()->GetScale(), 0.0);
}

