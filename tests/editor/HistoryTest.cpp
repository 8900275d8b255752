// Undo and redo in a real window, driven by mouse, menus and keys: every kind of
// edit is one step, the model after an undo saves byte for byte as before the
// edit, the modified flag follows the history, and cut and paste reach across
// windows; and one piece of work walked whole.
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/SelectTool.h"
#include "engine/APCAlgo.h"
#include "engine/APCLog.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCVar.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

using namespace Plugin;
using GuiDriver::OnNextModal;

class History : public ::testing::Test
{
public:
    std::unique_ptr<ModelControler> Open(const QString& name, bool readOnly = false)
    {
        EXPECT_TRUE(TestSupport::WriteAll(dir.filePath(name), TestSupport::kStepAndThreeVars));
        auto shown = CanvasDriver::OpenShown(dir.filePath(name), readOnly);
        EXPECT_TRUE(QTest::qWaitForWindowActive(shown.get()));
        return shown;
    }
    void SetUp() override { window = Open("m.apc"); }

    CanvasDriver::Mouse mouse() { return CanvasDriver::Mouse(*window); }
    QPoint at(const QString& id) { return mouse().At(id); }
    void drag(const QPoint& from, const QPoint& to) { mouse().Drag(from, to); }
    void click(const QString& id) { mouse().Click(at(id)); }
    // A key pressed in the window, which a dialog may have left inactive.
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier, ModelControler* in = nullptr)
    {
        ModelControler* target = in ? in : window.get();
        target->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(target));
        QTest::keyClick(target->GetView()->viewport(), Qt::Key(key), modifiers);
    }
    void use(const char* caption) { GuiDriver::Action(window.get(), caption)->trigger(); }
    QStringList editMenu() { return GuiDriver::MenuEntries(window.get(), "Edit"); }
    // The model as a save would write it.
    QByteArray saved(ModelControler& w)
    {
        const QString path = dir.filePath("snapshot.apc");
        EXPECT_TRUE(w.GetDocument()->SaveFile(path));
        return TestSupport::ReadAll(path);
    }

    QTemporaryDir dir;
    std::unique_ptr<ModelControler> window;
};

TEST_F(History, EveryKindOfEditIsOneStepThatUndoesAndRedoesWhole)
{
    struct Case
    {
        const char* name;
        std::function<void(History&)> edit;
        QString step; // the history's name for it
    };
    const std::vector<Case> cases = {
        {"move", [](History& t) { t.drag(t.at("{out}"), t.at("{out}") + QPoint(40, 20)); }, "Move"},
        {"resize",
         [](History& t) {
             t.click("{step}");
             auto* step = dynamic_cast<QGraphicsItem*>(t.window->FindItemBaseById("{step}"));
             const QPoint grip = t.mouse().At(step->mapToScene(QPointF(40.5, 20.5)));
             t.mouse().Move(grip);
             t.drag(grip, grip + QPoint(40, 40));
         },
         "Resize"},
        {"delete with its arrow, by key",
         [](History& t) {
             t.click("{step}");
             t.key(Qt::Key_Delete, Qt::NoModifier);
         },
         "Delete 1 object"},
        {"connect",
         [](History& t) {
             t.use("Connect");
             OnNextModal([](QWidget* d) { qobject_cast<QDialog*>(d)->accept(); });
             t.drag(t.at("{other}"), t.at("{step}"));
             t.key(Qt::Key_Escape, Qt::NoModifier);
         },
         "Connect"},
        {"add variable",
         [](History& t) {
             OnNextModal([](QWidget* d) { GuiDriver::Click(d, "okButton"); });
             t.use("Add Variable");
         },
         "Add Variable"},
        {"a dialog's OK",
         [](History& t) {
             OnNextModal([](QWidget* d) {
                 GuiDriver::Retype(GuiDriver::Child<QLineEdit>(d, "descriptionEdit"), "Renamed");
                 GuiDriver::Click(d, "okButton");
             });
             t.mouse().DoubleClick(t.at("{out}"));
         },
         "Change Result"},
        {"paste",
         [](History& t) {
             t.key(Qt::Key_A);
             t.use("Copy");
             t.use("Paste");
         },
         "Paste"},
        {"auto layout", [](History& t) { t.use("Auto Layout"); }, "Auto Layout"},
        {"a drop from the tool box",
         [](History& t) {
             ASSERT_TRUE(CanvasDriver::DropAlgo(*t.window, "Convert raster", "raster.translate", QPointF(300, 200)));
         },
         "Add Convert raster"},
        {"cut, by key",
         [](History& t) {
             t.click("{other}");
             t.key(Qt::Key_X);
             const QString copied = QApplication::clipboard()->text(); // for a paste elsewhere
             EXPECT_TRUE(copied.startsWith("ModelBuilder$$") && copied.contains("\"{other}\"")) << qPrintable(copied);
         },
         "Cut"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        window = Open("m.apc");
        const QByteArray before = saved(*window);
        c.edit(*this);
        const QByteArray edited = saved(*window);
        ASSERT_NE(edited, before);
        ASSERT_EQ(window->GetHistory()->count(), 1) << "one user action, one step";
        EXPECT_TRUE(editMenu().contains("Undo " + c.step)) << editMenu().join(", ").toStdString();

        key(Qt::Key_Z);
        EXPECT_EQ(saved(*window), before);
        EXPECT_TRUE(editMenu().contains("Redo " + c.step));
        EXPECT_EQ(window->GetScene()->GetItems().size(), window->GetDocument()->GetProcesses().size() +
                                                             window->GetDocument()->GetVars().size() +
                                                             window->GetDocument()->GetArrows().size());
        key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(saved(*window), edited);
        key(Qt::Key_Z);
        key(Qt::Key_Y);
        EXPECT_EQ(saved(*window), edited);
    }
}

// One piece of work as a user does it, from an example model to a saved,
// reopened model that has run: drop a tool, wire it, set a var, run, save.
TEST(WholeWork, FromAnExampleToASavedModelThatRan)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("work.apc");
    ASSERT_TRUE(QFile::copy(QCoreApplication::applicationDirPath() + "/../Model/apc/ndvi_one.apc", path));
    const QString scene = QStringLiteral(MB_SOURCE_DIR "/examples/data/scenes/scene_01.tif");

    std::unique_ptr<ModelControler> shown = CanvasDriver::OpenShown(path, false, 1100, 800);
    ModelControler& window = *shown;
    window.SetModelName("work");
    APCModel* model = window.GetDocument();
    CanvasDriver::Mouse mouse(window);
    const auto use = [&](const char* caption) { GuiDriver::Action(&window, caption)->trigger(); };

    // 1. A conversion dropped from the tool box beside the NDVI step.
    ASSERT_TRUE(CanvasDriver::DropAlgo(window, "Convert raster", "raster.translate", QPointF(300, 0)));
    ASSERT_EQ(model->GetProcesses().size(), 2);
    auto* step = dynamic_cast<APCAlgo*>(model->GetProcesses().last());
    ASSERT_TRUE(step);
    APCVar* ndvi = model->GetVars()[1]; // "NDVI file", the NDVI step's output

    // 2. Its own input var deleted, then the NDVI output connected to it.
    APCVar* ownInput = TestSupport::VarOf(*model, step, "In File");
    ASSERT_TRUE(ownInput);
    const QString ownInputId = ownInput->GetName();
    const int arrows = model->GetArrows().size();
    mouse.Click(mouse.At(ownInput));
    use("Delete"); // the var, and its arrow with it
    EXPECT_FALSE(model->FindVar(ownInputId));
    EXPECT_EQ(model->GetArrows().size(), arrows - 1);
    ASSERT_TRUE(step->GetParameter("In File").value.isEmpty());
    use("Connect");
    OnNextModal([](QWidget* arrowDialog) {
        // The user picks the step's input among its parameters.
        auto* parameter = arrowDialog->findChild<QComboBox*>("headParameter");
        ASSERT_TRUE(parameter);
        for (int i = 0; i < parameter->count(); ++i)
            if (parameter->itemText(i).contains("In File") || parameter->itemData(i).toString() == "In File")
                parameter->setCurrentIndex(i);
        GuiDriver::Click(arrowDialog, "okButton");
    });
    mouse.Drag(mouse.At(ndvi), mouse.At(step));
    EXPECT_EQ(step->GetParameter("In File").value, "%" + ndvi->GetName() + "%");

    // 3. Its output given a file name through the var dialog.
    use("Select");
    APCVar* converted = TestSupport::VarOf(*model, step, "Out File");
    ASSERT_TRUE(converted);
    const QString output = dir.filePath("converted.tif");
    OnNextModal([&](QWidget* varDialog) {
        GuiDriver::Click(varDialog, "constRadio");
        auto* edit = varDialog->findChild<QWidget*>("valueWidget")->findChild<QLineEdit*>();
        ASSERT_TRUE(edit);
        edit->selectAll();
        QTest::keyClicks(edit, output);
        GuiDriver::Click(varDialog, "okButton");
    });
    mouse.DoubleClick(mouse.At(converted));
    EXPECT_TRUE(converted->GetConstant());
    EXPECT_EQ(converted->GetValue(), output);
    EXPECT_TRUE(window.IsModified());

    // 4. Run: the dialog asks for the two free inputs; both steps run in turn.
    std::set<int> stepStates;
    window.GetSequenceControl()->NodeStatus.connect([&](SequenceNode* node, int status) {
        if (node->GetProcess()->GetName() == step->GetName())
            stepStates.insert(status);
    });
    OnNextModal([&](QWidget* runDialog) {
        GuiDriver::AnswerRunTabs(runDialog, [&](const QString& title) {
            return title == "Scene" ? scene : dir.filePath("ndvi.tif");
        });
    });
    use("Run");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }, 60000));
    const QString log = window.GetSequenceControl()->GetLog()->GetLogText();
    EXPECT_TRUE(log.contains("Succeed: 2, Fail: 0")) << qPrintable(log);
    EXPECT_TRUE(stepStates.count(SequenceNode::Running)) << "the canvas never saw the step run";
    EXPECT_TRUE(QFile::exists(output));

    // 5. Saved, reopened: the same model.
    use("Save");
    EXPECT_FALSE(window.IsModified());
    TestSupport::HeadlessModel reread;
    ASSERT_TRUE(reread.LoadFile(path));
    ASSERT_EQ(reread.GetProcesses().size(), 2);
    EXPECT_EQ(reread.GetVars().size(), model->GetVars().size());
    EXPECT_EQ(reread.GetArrows().size(), model->GetArrows().size());
    auto* again = dynamic_cast<APCAlgo*>(reread.FindProcess(step->GetName()));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->DialogText(), step->DialogText());
    EXPECT_EQ(reread.FindVar(converted->GetName())->GetValue(), output);
}

TEST_F(History, TheModifiedFlagFollowsTheHistoryThroughASaveAndTheWindowsOwnKeysWork)
{
    EXPECT_FALSE(window->IsModified());
    drag(at("{out}"), at("{out}") + QPoint(30, 0));
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_S);
    EXPECT_FALSE(window->IsModified());
    const QByteArray onDisk = TestSupport::ReadAll(dir.filePath("m.apc"));

    drag(at("{other}"), at("{other}") + QPoint(0, 30));
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_Z); // back to what was saved
    EXPECT_FALSE(window->IsModified());
    EXPECT_EQ(saved(*window), onDisk);
    key(Qt::Key_Z); // before the save
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_Y);
    EXPECT_FALSE(window->IsModified());

    // A click that moves nothing is no step.
    drag(at("{out}"), at("{out}"));
    EXPECT_EQ(window->GetHistory()->index(), 1);

    // Escape drops the current tool back to Select; Ctrl+A selects every item.
    use("Zoom In");
    key(Qt::Key_Escape, Qt::NoModifier);
    EXPECT_TRUE(dynamic_cast<SelectTool*>(window->GetCurrentTool()));
    key(Qt::Key_A);
    EXPECT_EQ(window->GetScene()->selectedItems().size(), window->GetScene()->GetItems().size());
    // The new entries come after the Edit menu's own.
    EXPECT_EQ(editMenu().mid(0, 3), QStringList({"Copy", "Paste", "Delete"}));

    // Nothing to undo in a read-only model.
    std::unique_ptr<ModelControler> readOnly = Open("locked.apc", true);
    key(Qt::Key_A, Qt::ControlModifier, readOnly.get());
    key(Qt::Key_Delete, Qt::NoModifier, readOnly.get());
    EXPECT_EQ(readOnly->GetHistory()->count(), 0);
    EXPECT_FALSE(GuiDriver::Action(readOnly.get(), "Undo")->isEnabled());
}

