#include "editor/GraphicsItemBase.h"
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
#include "support/TestSupport.h"

#include <QAction>
#include <QMenuBar>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDockWidget>
#include <QTabWidget>
#include <QGraphicsItem>
#include <QTemporaryDir>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::Action;
using TestSupport::WaitUntil;

namespace {

// Two do-nothing steps in a row, with no free input.
const char* kModel = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes>
        <Process class="algo" name="{one}" posX="0" posY="0" painter="" processName="test.noop"/>
        <Process class="algo" name="{two}" posX="0" posY="200" painter="" processName="test.noop"/>
    </Processes>
    <Vars>
        <Var class="string" name="{mid}" description="Middle" posX="0" posY="100" painter="" constant="1" value="x"/>
    </Vars>
    <Arrows>
        <Arrow head="{mid}" headType="var" headParam="" tail="{one}" tailType="process" tailParam="Out" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{two}" headType="process" headParam="In" tail="{mid}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
    </Arrows>
</Configuration>
)";

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
    void SetUp() override { ASSERT_TRUE(TestSupport::WriteAll(path(), kModel)); }
    QString path() const { return dir.filePath("m.apc"); }
    QTemporaryDir dir;
    ModelCommandManager* manager = ModelCommandManager::Instance();
};

TEST_F(ModelWindow, MenusAndEnableRulesFollowTheWindowAndTheRun)
{
    ModelControler window(path(), false);
    EXPECT_EQ(window.windowTitle(), "Model Builder");
    QStringList menus;
    for (QAction* a : window.menuBar()->actions())
        menus << a->text();
    EXPECT_EQ(menus, QStringList({"Model", "Edit", "Insert", "View"}));
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

TEST_F(ModelWindow, RunColoursTheStepsAndWritesTheLog)
{
    ModelControler window(path(), false);
    window.SetModelName("Two steps");
    Action(&window, "Run")->trigger();
    EXPECT_TRUE(window.findChild<QDockWidget*>()->isVisibleTo(&window)); // a run shows the log
    ASSERT_TRUE(WaitUntil([&] { return window.GetSequenceControl()->GetState() == 0; }));
    const QString output = panelText(window, 0);
    EXPECT_TRUE(output.startsWith("Start the model: Two steps\n"));
    EXPECT_EQ(output.count("Result of execution: Succeed"), 2);
    EXPECT_TRUE(output.contains("Generate: Succeed: 2, Fail: 0"));
    EXPECT_EQ(panelText(window, 1), "");
    EXPECT_EQ(output, window.GetSequenceControl()->GetLog()->GetLogText());
    EXPECT_FALSE(window.IsModified()); // a run is not an edit
}

TEST_F(ModelWindow, AClosedWindowGoesAtTheNextTick)
{
    auto* window = new ModelControler(path(), true);
    window->SetModified(true);
    window->show();
    manager->AddWindow(window);
    const int before = manager->WindowCount();
    QAction* save = Action(window, "Save");
    EXPECT_TRUE(window->close()); // read-only: no question, the flag is dropped
    EXPECT_FALSE(window->IsModified());
    EXPECT_EQ(manager->FindWindow(path()), window); // still found until the tick
    int ticks = 0;
    QObject listener; // the connection ends with the test
    QObject::connect(manager, &ModelCommandManager::InspectTimer, &listener, [&] { ++ticks; });
    manager->OnUpdateState();
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(manager->WindowCount(), before - 1);
    EXPECT_EQ(manager->FindWindow(path()), nullptr);
    EXPECT_EQ(manager->FindCommand(save), nullptr); // its commands left the list
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

TEST_F(ModelWindow, SaveWritesTheModelBackAndClearsTheFlag)
{
    ModelControler window(path(), false);
    window.GetDocument()->FindVar("{mid}")->SetDescription("Renamed");
    window.SetModified(true);
    Action(&window, "Save")->trigger();
    EXPECT_FALSE(window.IsModified());
    APCModel reread;
    ASSERT_TRUE(reread.LoadFile(path()));
    ASSERT_TRUE(reread.FindVar("{mid}"));
    EXPECT_EQ(reread.FindVar("{mid}")->GetDescription(), "Renamed");
}

TEST_F(ModelWindow, SaveOnAFullDiskKeepsTheOldFileWhole)
{
    const QByteArray before = TestSupport::ReadAll(path());
    ModelControler window(path(), false);
    window.GetDocument()->FindVar("{mid}")->SetDescription("Renamed");
    window.SetModified(true);
    {
        const TestSupport::FileSizeLimit full(before.size() / 2);
        Action(&window, "Save")->trigger();
    }
    EXPECT_FALSE(window.IsModified()); // saving stays silent, whatever it gave
    EXPECT_EQ(TestSupport::ReadAll(path()), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"m.apc"}); // no temporary left
}

TEST_F(ModelWindow, DeleteTakesTheSelectionAndItsArrowsAway)
{
    ModelControler window(path(), false);
    ASSERT_EQ(window.GetScene()->GetItems().size(), 5);
    for (QGraphicsItem* item : window.GetScene()->GetItems()) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        if (base && base->GetObject()->GetName() == "{mid}")
            item->setSelected(true);
    }
    Action(&window, "Delete")->trigger();
    // The var went, and both arrows with it; the steps stay.
    EXPECT_EQ(window.GetScene()->GetItems().size(), 2);
    EXPECT_EQ(window.GetDocument()->FindVar("{mid}"), nullptr);
    EXPECT_TRUE(window.GetDocument()->GetArrows().isEmpty());
    EXPECT_TRUE(window.IsModified());
}
