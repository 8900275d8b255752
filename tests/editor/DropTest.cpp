// Dropping a row of the tool box tree on a model's canvas. The offscreen
// platform runs no real drag, so each test hands the scene the three events a
// view passes on during one (enter, move, drop), with the tree as the source and
// the text the tool box puts in the drag.
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBGroup.h"
#include "toolbox/ATBIterator.h"
#include "toolbox/ATBTreeWidget.h"

#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

using CanvasDriver::DropOnCanvas;

class Drop : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    ATBTreeWidget tree;
};

TEST_F(Drop, ToolsBecomeStepsWithTheirVarsAndArrows)
{
    ATBAlgo ndvi;
    ndvi.SetName("Vegetation index");
    ndvi.SetMetadata("raster.ndvi");
    ATBIterator scenes;
    scenes.SetName("Scenes");
    scenes.SetClass("RasterFileIterator");
    ATBGroup group;
    group.SetName("Raster");

    struct Case { const char* name; ATBItem* item; bool readOnly; QString kind; int vars; };
    const Case cases[] = {
        // What a step needs and has no default for gets a var and an arrow:
        // NDVI's input and output, the iterator's folders and its output.
        {"an algorithm", &ndvi, false, "algo", 2},
        {"a file iterator", &scenes, false, "RasterFileIterator", 2},
        {"a group makes nothing", &group, false, QString(), 0},
        {"a read-only model takes nothing", &ndvi, true, QString(), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        tree.clear();
        auto window = std::make_unique<ModelControler>(dir.filePath("m.apc"), c.readOnly);
        EXPECT_EQ(DropOnCanvas(&tree, c.item, *window, QPointF(120, 80)), !c.readOnly);
        APCModel* model = window->GetDocument();
        if (c.kind.isEmpty()) {
            EXPECT_TRUE(model->GetProcesses().isEmpty());
            EXPECT_FALSE(window->IsModified());
            continue;
        }
        ASSERT_EQ(model->GetProcesses().size(), 1);
        APCProcess* step = model->GetProcesses().first();
        EXPECT_EQ(step->GetClass(), c.kind);
        EXPECT_EQ(step->GetDescription(), c.item->GetName()); // the tool box's name wins
        EXPECT_EQ(step->GetPos(), QPointF(120, 80));
        EXPECT_EQ(model->GetVars().size(), c.vars);
        EXPECT_EQ(model->GetArrows().size(), c.vars);
        EXPECT_EQ(window->GetScene()->GetItems().size(), 1 + 2 * c.vars);
        EXPECT_TRUE(window->IsModified());
    }
}

TEST_F(Drop, AModelCannotBeDroppedIntoItself)
{
    ATBAlgoDepend self(false);
    self.SetName("Self");
    self.SetFile("Model/apc/self.apc");
    auto window = std::make_unique<ModelControler>(ATBItem::AppRoot() + "Model/apc/self.apc", false);
    QString warning;
    GuiDriver::OnNextModal([&](QWidget* modal) {
        warning = modal->windowTitle() + ": " + qobject_cast<QMessageBox*>(modal)->text();
        modal->close();
    });
    EXPECT_TRUE(DropOnCanvas(&tree, &self, *window, QPointF(0, 0)));
    EXPECT_EQ(warning, "Warning: Can not drag self!");
    EXPECT_TRUE(window->GetDocument()->GetProcesses().isEmpty());
}
