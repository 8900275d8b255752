// Copy in one model window, paste in another: new ids, references that follow
// the copied vars or are emptied, arrows made again, nothing to save. And rows of
// the tool box dropped on a canvas.
#include "editor/GraphicsItemBase.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBGroup.h"
#include "toolbox/ATBIterator.h"
#include "toolbox/ATBTreeWidget.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QGraphicsItem>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

class Clipboard : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("from.apc"), TestSupport::kStepAndThreeVars));
        from = std::make_unique<ModelControler>(dir.filePath("from.apc"), false);
        to = std::make_unique<ModelControler>(dir.filePath("new.apc"), false); // no file yet: empty
    }
    // As a user clicks the command: enabled at the last tick, or nothing happens.
    void click(ModelControler& window, const char* caption)
    {
        ModelCommandManager::Instance()->OnUpdateState();
        GuiDriver::Action(&window, caption)->trigger();
    }
    void select(ModelControler& window, const QStringList& ids)
    {
        for (const QString& id : ids)
            dynamic_cast<QGraphicsItem*>(window.FindItemBaseById(id))->setSelected(true);
    }
    void pasteText(const QString& text)
    {
        QApplication::clipboard()->setText(text);
        click(*to, "Paste");
    }

    QTemporaryDir dir;
    std::unique_ptr<ModelControler> from;
    std::unique_ptr<ModelControler> to;
};

TEST_F(Clipboard, AStepAndOneOfItsVarsComeBackJoinedWithNewIds)
{
    select(*from, {"{step}", "{in}"});
    click(*from, "Copy");
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(mime);
    EXPECT_TRUE(mime->text().startsWith("ModelBuilder$$"));
    const QImage picture = qvariant_cast<QImage>(mime->imageData());
    EXPECT_FALSE(picture.isNull());
    EXPECT_GE(picture.height(), 150 + 40); // from the var's top to the step's bottom

    APCModel* model = to->GetDocument();
    for (int paste = 1; paste <= 2; ++paste) {
        SCOPED_TRACE(paste);
        click(*to, "Paste");
        ASSERT_EQ(model->GetProcesses().size(), paste);
        ASSERT_EQ(model->GetVars().size(), paste);
        ASSERT_EQ(model->GetArrows().size(), paste);
        APCProcess* step = model->GetProcesses().last();
        APCVar* in = model->GetVars().last();
        APCArrow* arrow = model->GetArrows().last();
        EXPECT_NE(step->GetName(), "{step}");
        EXPECT_NE(in->GetName(), "{in}");
        EXPECT_EQ(step->GetParameter("In File").value, "%" + in->GetName() + "%");
        EXPECT_EQ(arrow->GetHead(), step->GetName());
        EXPECT_EQ(arrow->GetHeadParam(), "In File");
        EXPECT_EQ(arrow->GetTail(), in->GetName());
        // Both keep their places to each other, and every paste lands on the same spot.
        EXPECT_EQ(step->GetPos() - in->GetPos(), QPointF(0, 150));
        EXPECT_EQ(in->GetPos(), model->GetVars().first()->GetPos());
        EXPECT_EQ(to->GetScene()->GetItems().size(), 3 * paste);
        EXPECT_TRUE(to->FindItem(arrow));
    }
    EXPECT_NE(model->GetProcesses().first()->GetName(), model->GetProcesses().last()->GetName());
    EXPECT_FALSE(to->IsModified()); // a paste alone leaves nothing to save

    // What was pasted belongs to the model like the rest: it can be deleted.
    to->GetScene()->clearSelection();
    to->FindItem(model->GetVars().first())->setSelected(true);
    click(*to, "Delete");
    EXPECT_EQ(model->GetVars().size(), 1);
    EXPECT_EQ(model->GetArrows().size(), 1);
    EXPECT_EQ(model->GetProcesses().first()->GetParameter("In File").value, "");
    EXPECT_EQ(to->GetScene()->GetItems().size(), 4);
}

TEST_F(Clipboard, CharactersNoSaveCanWriteAreNotPasted)
{
    pasteText("ModelBuilder$$<Process class=\"algo\" name=\"{p}\" processName=\"test.copy&#1;Text\" posX=\"0\" posY=\"0\"/>");
    ASSERT_EQ(to->GetDocument()->GetProcesses().size(), 1);
    EXPECT_EQ(to->GetDocument()->GetProcesses()[0]->GetDescription(), "Copy text file"); // found in the catalogue
}

// Dropping a row of the tool box tree on a model's canvas.
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
        EXPECT_EQ(CanvasDriver::DropOnCanvas(&tree, c.item, *window, QPointF(120, 80)), !c.readOnly);
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
    GuiDriver::Message warning;
    GuiDriver::AnswerMessage(&warning);
    EXPECT_TRUE(CanvasDriver::DropOnCanvas(&tree, &self, *window, QPointF(0, 0)));
    EXPECT_EQ(warning.title + ": " + warning.text, "Warning: Can not drag self!");
    EXPECT_TRUE(window->GetDocument()->GetProcesses().isEmpty());
}

TEST_F(Clipboard, OnlyCopiedObjectsOfKnownKindsArePasted)
{
    struct Case { const char* name; QString text; int processes; int vars; int arrows; };
    const Case cases[] = {
        {"another program's text", "some words", 0, 0, 0},
        {"the marker and broken XML", "ModelBuilder$$<Var class=", 0, 0, 0},
        {"arrows alone copy to the marker only", "ModelBuilder$$", 0, 0, 0},
        {"a step of an unknown kind is left out, its var is not",
         R"(ModelBuilder$$<Process class="nosuch" name="{p}" posX="0" posY="0"/><Var class="file" name="{v}" posX="0" posY="0"/>)",
         0, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        to = std::make_unique<ModelControler>(dir.filePath("new.apc"), false);
        pasteText(c.text);
        APCModel* model = to->GetDocument();
        EXPECT_EQ(model->GetProcesses().size(), c.processes);
        EXPECT_EQ(model->GetVars().size(), c.vars);
        EXPECT_EQ(model->GetArrows().size(), c.arrows);
        EXPECT_EQ(to->GetScene()->GetItems().size(), c.processes + c.vars + c.arrows);
    }
}

