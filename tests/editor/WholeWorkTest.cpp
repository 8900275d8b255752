// One piece of work as a user does it, from an example model to a saved,
// reopened model that has run: drop a tool, wire it, set a var, run, save.
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "engine/APCAlgo.h"
#include "engine/APCLog.h"
#include "engine/SequenceControl.h"
#include "engine/SequenceNode.h"
#include "model/APCArrow.h"
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
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <set>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

void trigger(ModelControler& window, const char* caption)
{
    GuiDriver::Action(&window, caption)->trigger();
}

class Mouse
{
public:
    explicit Mouse(ModelControler& window) : m_window(window) {}
    QPoint At(const QPointF& scenePos) { return m_window.GetView()->mapFromScene(scenePos); }
    QPoint At(APCObject* object) { return At(m_window.FindItem(object)->sceneBoundingRect().center()); }
    void Move(const QPoint& to, Qt::MouseButtons buttons)
    {
        QWidget* viewport = m_window.GetView()->viewport();
        QMouseEvent event(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    }
    void Click(const QPoint& at)
    {
        Move(at, Qt::NoButton);
        QTest::mouseClick(m_window.GetView()->viewport(), Qt::LeftButton, {}, at);
    }
    void DoubleClick(const QPoint& at)
    {
        Move(at, Qt::NoButton);
        QTest::mouseDClick(m_window.GetView()->viewport(), Qt::LeftButton, {}, at);
    }
    void Drag(const QPoint& from, const QPoint& to)
    {
        QWidget* viewport = m_window.GetView()->viewport();
        Move(from, Qt::NoButton);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        for (int i = 1; i <= 3; ++i)
            Move(from + (to - from) * i / 3, Qt::LeftButton);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
    }

private:
    ModelControler& m_window;
};

} // namespace

TEST(WholeWork, FromAnExampleToASavedModelThatRan)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("work.apc");
    ASSERT_TRUE(QFile::copy(QCoreApplication::applicationDirPath() + "/../Model/apc/ndvi_one.apc", path));
    const QString scene = QStringLiteral(MB_SOURCE_DIR "/examples/data/scenes/scene_01.tif");

    ModelControler window(path, false);
    window.SetModelName("work");
    window.resize(1100, 800);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    APCModel* model = window.GetDocument();
    Mouse mouse(window);

    // 1. A conversion dropped from the tool box beside the NDVI step.
    ATBTreeWidget tree;
    ATBAlgo convert;
    convert.SetName("Convert raster");
    convert.SetMetadata("raster.translate");
    ASSERT_TRUE(CanvasDriver::DropOnCanvas(&tree, &convert, window, QPointF(300, 0)));
    ASSERT_EQ(model->GetProcesses().size(), 2);
    auto* step = dynamic_cast<APCAlgo*>(model->GetProcesses().last());
    ASSERT_TRUE(step);
    APCVar* ndvi = model->GetVars()[1]; // "NDVI file", the NDVI step's output

    // 2. Its own input var deleted, then the NDVI output connected to it.
    APCVar* ownInput = TestSupport::VarOf(*model, step, "In File");
    ASSERT_TRUE(ownInput);
    mouse.Click(mouse.At(ownInput));
    trigger(window, "Delete");
    ASSERT_TRUE(step->GetParameter("In File").value.isEmpty());
    trigger(window, "Connect");
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
    trigger(window, "Select");
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
        auto* tabs = runDialog->findChild<QTabWidget*>();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QTest::keyClicks(tabs->widget(i)->findChild<QLineEdit*>(),
                             tabs->tabText(i) == "Scene" ? scene : dir.filePath("ndvi.tif"));
        }
        GuiDriver::Click(runDialog, "okButton");
    });
    trigger(window, "Run");
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }, 60000));
    const QString log = window.GetSequenceControl()->GetLog()->GetLogText();
    EXPECT_TRUE(log.contains("Succeed: 2, Fail: 0")) << qPrintable(log);
    EXPECT_TRUE(stepStates.count(SequenceNode::Running)) << "the canvas never saw the step run";
    EXPECT_TRUE(QFile::exists(output));

    // 5. Saved, reopened: the same model.
    trigger(window, "Save");
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
