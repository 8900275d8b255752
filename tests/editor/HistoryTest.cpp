// Undo and redo in a real window, driven by mouse, menus and keys: every kind of
// edit is one step, the model after an undo saves byte for byte as before the
// edit, the modified flag follows the history, and cut and paste reach across
// windows.
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/SelectTool.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBTreeWidget.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QGraphicsItem>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Plugin;
using GuiDriver::OnNextModal;


class History : public ::testing::Test
{
public:
    std::unique_ptr<ModelControler> Open(const QString& name, bool readOnly = false)
    {
        EXPECT_TRUE(TestSupport::WriteAll(dir.filePath(name), TestSupport::kStepAndThreeVars));
        auto window = std::make_unique<ModelControler>(dir.filePath(name), readOnly);
        window->resize(900, 700);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        return window;
    }
    void SetUp() override { window = Open("m.apc"); }

    QWidget* viewport() { return window->GetView()->viewport(); }
    QPoint at(const QPointF& scenePos) { return window->GetView()->mapFromScene(scenePos); }
    QPoint at(const QString& id)
    {
        return at(dynamic_cast<QGraphicsItem*>(window->FindItemBaseById(id))->pos());
    }
    void move(const QPoint& to, Qt::MouseButtons buttons)
    {
        QMouseEvent event(QEvent::MouseMove, to, viewport()->mapToGlobal(to), Qt::NoButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &event);
    }
    void drag(const QPoint& from, const QPoint& to)
    {
        move(from, Qt::NoButton);
        QTest::mousePress(viewport(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 3; ++i)
            move(from + (to - from) * i / 3, Qt::LeftButton);
        QTest::mouseRelease(viewport(), Qt::LeftButton, {}, to);
    }
    void click(const QString& id) { drag(at(id), at(id)); }
    // A key pressed in the window, which a dialog may have left inactive.
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier, ModelControler* in = nullptr)
    {
        ModelControler* target = in ? in : window.get();
        target->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(target));
        QTest::keyClick(target->GetView()->viewport(), Qt::Key(key), modifiers);
    }
    void use(const char* caption) { GuiDriver::Action(window.get(), caption)->trigger(); }
    // The texts of the Edit menu's entries.
    QStringList editMenu()
    {
        for (QAction* menu : window->menuBar()->actions())
            if (menu->text() == "Edit") {
                QStringList texts;
                for (QAction* entry : menu->menu()->actions())
                    texts << entry->text();
                return texts;
            }
        return {};
    }
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
             const QPoint grip = t.at(step->mapToScene(QPointF(40.5, 20.5)));
             t.move(grip, Qt::NoButton);
             t.drag(grip, grip + QPoint(40, 40));
         },
         "Resize"},
        {"delete with its arrow, by key",
         [](History& t) {
             t.click("{step}");
             t.key(Qt::Key_Delete, Qt::NoModifier);
         },
         "Delete 1 object"},
        {"everything, by keys", [](History& t) {
             t.key(Qt::Key_A);
             t.key(Qt::Key_Delete, Qt::NoModifier);
         }, "Delete 5 objects"},
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
             t.move(t.at("{out}"), Qt::NoButton);
             QTest::mouseDClick(t.viewport(), Qt::LeftButton, {}, t.at("{out}"));
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
             ATBTreeWidget tree;
             ATBAlgo convert;
             convert.SetName("Convert raster");
             convert.SetMetadata("raster.translate");
             ASSERT_TRUE(CanvasDriver::DropOnCanvas(&tree, &convert, *t.window, QPointF(300, 200)));
         },
         "Add Convert raster"},
        {"cut, by key",
         [](History& t) {
             t.click("{other}");
             t.key(Qt::Key_X);
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

TEST_F(History, TheModifiedFlagFollowsTheHistoryThroughASave)
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
}

TEST_F(History, CutInOneWindowPastesIntoAnotherAndEachUndoesItsOwn)
{
    std::unique_ptr<ModelControler> other = Open("second.apc");
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    click("{other}");
    key(Qt::Key_X);
    EXPECT_FALSE(window->GetDocument()->FindVar("{other}"));

    other->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(other.get()));
    GuiDriver::Action(other.get(), "Paste")->trigger();
    EXPECT_EQ(other->GetDocument()->GetVars().size(), 4);
    key(Qt::Key_Z, Qt::ControlModifier, other.get());
    EXPECT_EQ(other->GetDocument()->GetVars().size(), 3);

    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    key(Qt::Key_Z);
    EXPECT_TRUE(window->GetDocument()->FindVar("{other}"));
}

TEST_F(History, NothingToUndoInAReadOnlyModelAndTheWindowsOwnKeysWork)
{
    std::unique_ptr<ModelControler> readOnly = Open("locked.apc", true);
    QTest::keyClick(readOnly->GetView()->viewport(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(readOnly->GetView()->viewport(), Qt::Key_Delete);
    EXPECT_EQ(readOnly->GetHistory()->count(), 0);
    EXPECT_FALSE(GuiDriver::Action(readOnly.get(), "Undo")->isEnabled());
    readOnly.reset();

    // Escape drops the current tool back to Select; Ctrl+A selects every item.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    use("Zoom In");
    key(Qt::Key_Escape, Qt::NoModifier);
    EXPECT_TRUE(dynamic_cast<SelectTool*>(window->GetCurrentTool()));
    key(Qt::Key_A);
    EXPECT_EQ(window->GetScene()->selectedItems().size(), window->GetScene()->GetItems().size());
    // The new entries come after the Edit menu's own.
    EXPECT_EQ(editMenu().mid(0, 3), QStringList({"Copy", "Paste", "Delete"}));
}
