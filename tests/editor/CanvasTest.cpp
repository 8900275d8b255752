// The canvas: items of a loaded model (places, shapes, states), the scene and
// view that hand events to the current tool, and the tools driven with real
// mouse events on the view, the model checked afterwards: each step of a drag
// is written back with the place the item had before it, and the bands and lines
// the tools raise come down as the editor has always taken them down. Copy and
// paste across windows, and rows of the tool box dropped on a canvas. Undo and
// redo: every kind of edit is one step, the model after an undo saves byte for
// byte as before the edit, the modified flag follows the history.
#include "editor/AlgoGraphics.h"
#include "editor/ArrowGraphics.h"
#include "editor/GraphicsItemBase.h"
#include "editor/IteratorGraphics.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/SelectTool.h"
#include "editor/VarGraphics.h"
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
#include <QDialog>
#include <QGraphicsRectItem>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionGraphicsItem>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

// An algorithm the catalogue doesn't know (so it keeps its stored shape) reading
// a var and writing another, an iterator, and a known algorithm.
const char* kModel = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <Processes>
        <Process class="algo" name="{a}" description="NDVI" posX="100" posY="50" painter="{&quot;width&quot;:&quot;120.000000&quot;, &quot;height&quot;:&quot;60.000000&quot;}" processName="local.ndvi">
            <Parameter name="In File" type="file" direction="0" value="%{in}%" description="Input"/>
            <Parameter name="Out File" type="file" direction="1" value="%{out}%" description="Output"/>
        </Process>
        <Process class="algo" name="{known}" posX="400" posY="50" painter="{&quot;width&quot;:&quot;120.000000&quot;, &quot;height&quot;:&quot;60.000000&quot;}" processName="test.noop"/>
        <Process class="RasterFileIterator" name="{it}" posX="-200" posY="50" painter="not json">
            <Parameter name="strDir" type="multiDirectory" direction="0" value="" description="Folders"/>
        </Process>
    </Processes>
    <Vars>
        <Var class="file" name="{in}" description="Scene" posX="100" posY="-150" painter="" constant="1" value="a.txt"/>
        <Var class="file" name="{out}" description="Result" posX="100" posY="250" painter="{}" constant="1" value="b.txt"/>
    </Vars>
    <Arrows>
        <Arrow head="{a}" headType="process" headParam="In File" tail="{in}" tailType="var" tailParam="" class="arrow" posX="0" posY="0" painter=""/>
        <Arrow head="{out}" headType="var" headParam="" tail="{a}" tailType="process" tailParam="Out File" class="arrow" posX="0" posY="0" painter=""/>
    </Arrows>
</Configuration>
)";

template <class T>
T* itemOf(ModelControler& window, const QString& id)
{
    return dynamic_cast<T*>(window.FindItemBaseById(id));
}

// Paints item once, as a view would.
void paintOnce(QGraphicsItem* item)
{
    QImage image(400, 400, QImage::Format_ARGB32);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    item->paint(&painter, &option, nullptr);
}

// Accepts every modal dialog that opens while it lives, and names them.
class ModalWatch
{
public:
    ModalWatch()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                opened << modal->metaObject()->className();
                modal->accept();
            }
        });
        m_timer.start(10);
    }
    QStringList opened;

private:
    QTimer m_timer;
};

} // namespace

TEST(CanvasItems, LoadedItemsStandPaintScaleAndShowStates)
{
    QTemporaryDir dir;
    ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), kModel));
    auto window = std::make_unique<ModelControler>(dir.filePath("m.apc"), false);
    EXPECT_EQ(window->GetScene()->GetItems().size(), 7);
    auto* algo = itemOf<AlgoGraphics>(*window, "{a}");
    ASSERT_TRUE(algo);
    EXPECT_EQ(algo->rect(), QRectF(-60, -30, 120, 60));
    EXPECT_EQ(algo->pos(), QPointF(100, 50));

    // An algorithm of the catalogue comes back at the default size, whatever its
    // file says.
    auto* known = itemOf<AlgoGraphics>(*window, "{known}");
    ASSERT_TRUE(known);
    EXPECT_EQ(known->rect(), QRectF(-40, -20, 80, 40));

    // Unreadable painter texts give the defaults; an empty object gives zero.
    auto* iterator = itemOf<IteratorGraphics>(*window, "{it}");
    ASSERT_TRUE(iterator);
    EXPECT_EQ(iterator->polygon().boundingRect(), QRectF(-50, -50, 100, 100));
    auto* scene = itemOf<VarGraphics>(*window, "{in}");
    auto* result = itemOf<VarGraphics>(*window, "{out}");
    ASSERT_TRUE(scene && result);
    EXPECT_EQ(scene->rect(), QRectF(-40, -20, 80, 40));
    EXPECT_EQ(result->rect().size(), QSizeF(0, 0));

    // Arrows found their ends and lie under the items.
    auto* in = dynamic_cast<ArrowGraphics*>(window->FindItem(window->GetDocument()->GetArrows()[0]));
    ASSERT_TRUE(in);
    EXPECT_EQ(in->GetHeadItem(), algo);
    EXPECT_EQ(in->GetTailItem(), scene);
    EXPECT_EQ(in->zValue(), -1.0);
    EXPECT_FALSE(in->flags() & QGraphicsItem::ItemIsMovable);
    // A var of no size has no outline to meet: its arrow still paints.
    paintOnce(window->FindItem(window->GetDocument()->GetArrows()[1]));

    // An arrow vanishes while its ends overlap.
    paintOnce(in);
    const QPolygonF head = in->GetHeadShape();
    ASSERT_EQ(head.size(), 3);
    EXPECT_EQ(head[0], QPointF(100, 20)); // on the algorithm's top edge, where it points
    algo->setPos(100, -150); // on top of its input var
    paintOnce(in);
    EXPECT_EQ(in->GetHeadShape(), head); // nothing painted, nothing recomputed
    algo->setPos(100, 50);

    // Step states colour the shapes, but never a var; a failure has no colour of its own.
    algo->SetProgress(42.9);
    struct State { int state; Qt::GlobalColor colour; int progress; };
    for (const State& s : {State{1, Qt::yellow, 42}, State{2, Qt::darkYellow, 100}, State{-1, Qt::lightGray, 0}}) {
        algo->SetState(s.state);
        EXPECT_EQ(algo->brush().color(), QColor(s.colour));
        EXPECT_EQ(algo->GetProgress(), s.progress);
    }
    scene->SetState(1);
    EXPECT_EQ(scene->brush().color(), QColor(Qt::green));

    // Scaling starts from the bounding rectangle.
    const double pen = algo->pen().widthF();
    algo->ScaleBy(QPointF(0, 0), 1, 1);
    EXPECT_EQ(algo->rect().size(), QSizeF(120 + pen, 60 + pen));
    algo->ScaleBy(QPointF(0, 50), -1, 1); // no turning inside out; the place mirrors
    EXPECT_GT(algo->rect().width(), 0);
    EXPECT_EQ(algo->pos(), QPointF(-100, 50));
    const QPointF before = iterator->pos();
    iterator->ScaleBy(iterator->pos(), 2, 2); // about its own centre: it stays put
    EXPECT_EQ(iterator->pos(), before);
    EXPECT_EQ(iterator->polygon().boundingRect(), QRectF(-100, -100, 200, 200));
}

// ---------------------------------------------------------------------------
// The tools

class Tools : public ::testing::Test
{
public:
    void SetUp() override { Open(false); }

    void Open(bool readOnly)
    {
        ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), TestSupport::kStepAndThreeVars));
        window = CanvasDriver::OpenShown(dir.filePath("m.apc"), readOnly);
        mouse.SetWindow(*window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ModelView* view() { return window->GetView(); }
    QWidget* viewport() { return view()->viewport(); }
    ModelScene* scene() { return window->GetScene(); }
    APCModel* model() { return window->GetDocument(); }
    QGraphicsItem* item(const QString& id) { return dynamic_cast<QGraphicsItem*>(window->FindItemBaseById(id)); }
    // Bands and lines a tool has up: scene items that show no object.
    int strayItems() { return scene()->items().size() - scene()->GetItems().size(); }
    QGraphicsItem* firstStray()
    {
        for (QGraphicsItem* it : scene()->items())
            if (!scene()->GetItems().contains(it))
                return it;
        return nullptr;
    }
    void use(const char* caption) { GuiDriver::Action(window.get(), caption)->trigger(); }

    CanvasDriver::Mouse mouse;
    QTemporaryDir dir;
    std::unique_ptr<ModelControler> window;
};

TEST_F(Tools, HandlesResizeTheOneSelectedItemAboutTheOppositePoint)
{
    struct Case { const char* name; QPointF handle; QPoint pull; Qt::CursorShape cursor; QSizeF size; };
    // The step's bounding rectangle is 81 by 41 (80 by 40 and the pen); a pull by
    // its own width doubles what the handle governs.
    const Case cases[] = {
        {"bottom right corner", {40.5, 20.5}, {81, 41}, Qt::SizeFDiagCursor, {162, 82}},
        {"right side: the height stays", {40.5, 0}, {81, 30}, Qt::SizeHorCursor, {162, 41}},
        {"top side: the width stays", {0, -20.5}, {30, -41}, Qt::SizeVerCursor, {81, 82}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Open(false);
        QGraphicsItem* step = item("{step}");
        mouse.Drag(mouse.At("{step}"), mouse.At("{step}")); // a click selects it
        ASSERT_EQ(scene()->selectedItems(), QList<QGraphicsItem*>{step});

        const QPoint grip = mouse.At(step->mapToScene(c.handle));
        mouse.Move(grip);
        EXPECT_EQ(view()->cursor().shape(), c.cursor);
        mouse.Press(grip);
        mouse.Move(grip + c.pull / 2, Qt::LeftButton);
        mouse.Move(grip + c.pull, Qt::LeftButton);
        EXPECT_EQ(strayItems(), 1); // the band shows the new size
        EXPECT_FALSE(window->IsModified());
        const QPointF centre = step->pos();
        mouse.Release(grip + c.pull);

        const QSizeF size = static_cast<QGraphicsRectItem*>(step)->rect().size();
        EXPECT_NEAR(size.width(), c.size.width(), 2);
        EXPECT_NEAR(size.height(), c.size.height(), 2);
        // The model holds what the view shows.
        const QRectF stored = model()->FindProcess("{step}")->GetRect();
        EXPECT_NEAR(stored.width(), size.width(), 1e-3);
        EXPECT_NEAR(stored.height(), size.height(), 1e-3);
        // The resize moves the centre, and the model keeps the one from before.
        EXPECT_NE(step->pos(), centre);
        EXPECT_EQ(stored.center(), centre);
        EXPECT_TRUE(window->IsModified());
        EXPECT_EQ(strayItems(), 0);
        EXPECT_TRUE(step->flags() & QGraphicsItem::ItemIsMovable);
    }
}

TEST_F(Tools, AReadOnlyModelIsNeitherMovedNorResized)
{
    Open(true);
    QGraphicsItem* step = item("{step}");
    const QRectF before = step->sceneBoundingRect();
    mouse.Drag(mouse.At("{step}"), mouse.At("{step}") + QPoint(30, 20));
    EXPECT_EQ(step->sceneBoundingRect(), before);
    step->setSelected(true);
    const QPoint grip = mouse.At(step->mapToScene(QPointF(40.5, 20.5)));
    mouse.Drag(grip, grip + QPoint(60, 60));
    EXPECT_EQ(step->sceneBoundingRect(), before);
    // Nothing to delete, nor to undo.
    QTest::keyClick(viewport(), Qt::Key_Delete);
    EXPECT_EQ(window->GetHistory()->count(), 0);
    EXPECT_FALSE(GuiDriver::Action(window.get(), "Undo")->isEnabled());
    EXPECT_FALSE(window->IsModified());
}

// Needs the arrow dialog registered for arrows: until then no dialog opens and
// the two joining rows fail.
TEST_F(Tools, ConnectJoinsAVarAndAStepThroughTheArrowDialog)
{
    struct Case { const char* name; const char* from; const char* to; bool joins; bool readOnly = false; };
    const Case cases[] = {
        {"var to step", "{other}", "{step}", true},
        {"step to var", "{step}", "{out}", true},
        {"var to var: refused", "{other}", "{out}", false},
        {"step to nothing: refused", "{step}", nullptr, false},
        {"a read-only model: refused", "{other}", "{step}", false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Open(c.readOnly);
        use("Connect");
        const QPoint to = c.to ? mouse.At(c.to) : mouse.At(QPointF(0, 250));
        ModalWatch watch;
        mouse.Drag(mouse.At(c.from), to);
        if (c.joins)
            TestSupport::WaitUntil([&] { return !watch.opened.isEmpty(); }, 6000);
        EXPECT_EQ(watch.opened, c.joins ? QStringList{"Plugin::APCArrowDlg"} : QStringList());
        EXPECT_EQ(strayItems(), 0);
        EXPECT_EQ(model()->GetArrows().size(), c.joins ? 2 : 1);
        if (!c.joins || model()->GetArrows().size() != 2)
            continue;
        APCArrow* arrow = model()->GetArrows().last();
        EXPECT_EQ(arrow->GetTail(), c.from); // it points where the drag went
        EXPECT_EQ(arrow->GetHead(), c.to);
        EXPECT_TRUE(window->FindItem(arrow)); // and shows
        EXPECT_TRUE(window->IsModified());
    }
}

TEST_F(Tools, ASecondPressReusesABandButLeavesTheFirstConnectLineBehind)
{
    struct Case { const char* tool; int afterSecondPress; int afterSwitch; };
    // The connect tool starts a new line and leaves the first in the scene; the
    // others take up the band they have.
    const Case cases[] = {{"Select", 1, 0}, {"Connect", 2, 1}, {"Zoom In", 1, 0}, {"Zoom Out", 1, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tool);
        Open(false);
        use(c.tool);
        const QPoint start = mouse.At(QPointF(-120, 150)); // over nothing
        mouse.Move(start);
        mouse.Press(start);
        mouse.Move(start + QPoint(40, 30), Qt::LeftButton);
        mouse.Press(start + QPoint(40, 30)); // a second press: the release of the first was lost
        mouse.Move(start + QPoint(60, 50), Qt::LeftButton);
        EXPECT_EQ(strayItems(), c.afterSecondPress);
        use("Pan"); // a switch in mid-drag drops what the tool has up
        EXPECT_EQ(strayItems(), c.afterSwitch);
        mouse.Release(start + QPoint(60, 50));
        EXPECT_EQ(strayItems(), c.afterSwitch);
        EXPECT_EQ(scene()->GetScale(), 1.0);
        EXPECT_FALSE(window->IsModified());
    }
}

TEST_F(Tools, AZoomClickZoomsNothingAndLeavesItsEmptyBandForTheNextPressWhichStopsAtTheLimit)
{
    for (const char* tool : {"Zoom In", "Zoom Out"}) {
        SCOPED_TRACE(tool);
        Open(false);
        use(tool);
        const QPoint start = viewport()->rect().center();
        mouse.Drag(start, start);
        EXPECT_EQ(scene()->GetScale(), 1.0);
        ASSERT_EQ(strayItems(), 1);
        QGraphicsItem* band = firstStray();
        EXPECT_TRUE(band->boundingRect().width() <= 1.0 && band->boundingRect().height() <= 1.0);
        // The next gesture draws with that band and then takes it down.
        mouse.Move(start + QPoint(-30, -30));
        mouse.Press(start + QPoint(-30, -30));
        mouse.Move(start + QPoint(-10, -10), Qt::LeftButton);
        EXPECT_EQ(strayItems(), 1);
        EXPECT_EQ(firstStray(), band);
        mouse.Release(start + QPoint(-10, -10));
        // A small box zooms in up to 5, out down to 0.2.
        EXPECT_DOUBLE_EQ(scene()->GetScale(), QByteArray(tool) == "Zoom In" ? 5.0 : 0.2);
        EXPECT_EQ(strayItems(), 0);
    }
}

TEST_F(Tools, ABandSelectsWhatItTouchesAndGoesAwayAndPanScrollsMovingNoItem)
{
    mouse.Drag(mouse.At(QPointF(-120, -200)), mouse.At(QPointF(40, 10)));
    QStringList selected;
    for (QGraphicsItem* it : scene()->selectedItems())
        if (it->type() != ArrowGraphics::Type)
            selected << dynamic_cast<GraphicsItemBase*>(it)->GetObject()->GetName();
    selected.sort();
    EXPECT_EQ(selected, QStringList({"{in}", "{step}"}));
    EXPECT_EQ(strayItems(), 0);

    view()->ApplyScale(4.0); // larger than the window: there is somewhere to scroll
    QApplication::processEvents();
    use("Pan");
    QScrollBar* bar = view()->horizontalScrollBar();
    const int before = bar->value();
    const QPoint middle = viewport()->rect().center();
    mouse.Drag(middle, middle - QPoint(100, 0));
    EXPECT_EQ(bar->value(), before + 100);
    EXPECT_EQ(view()->dragMode(), QGraphicsView::NoDrag);
    EXPECT_EQ(item("{step}")->pos(), QPointF(0, 0));
    EXPECT_FALSE(window->IsModified());
}

// ---------------------------------------------------------------------------
// Copy in one model window, paste in another: new ids, references that follow
// the copied vars or are emptied, arrows made again, nothing to save. And rows of
// the tool box dropped on a canvas.

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
    for (const char* id : {"{step}", "{in}"})
        dynamic_cast<QGraphicsItem*>(from->FindItemBaseById(id))->setSelected(true);
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

// Dropping a row of the tool box tree on a model's canvas.
TEST(Drop, ToolsBecomeStepsWithTheirVarsAndArrows)
{
    QTemporaryDir dir;
    ATBTreeWidget tree;
    ATBAlgo ndvi;
    ndvi.SetName("Vegetation index");
    ndvi.SetMetadata("raster.ndvi");
    ATBIterator scenes;
    scenes.SetName("Scenes");
    scenes.SetClass("RasterFileIterator");
    ATBGroup group;
    group.SetName("Raster");
    ATBAlgoDepend self(false);
    self.SetName("Self");
    self.SetFile("Model/apc/self.apc");

    struct Case { const char* name; ATBItem* item; bool readOnly; QString kind; int vars; QString path = {}; };
    const Case cases[] = {
        // What a step needs and has no default for gets a var and an arrow:
        // NDVI's input and output, the iterator's folders and its output.
        {"an algorithm", &ndvi, false, "algo", 2},
        {"a file iterator", &scenes, false, "RasterFileIterator", 2},
        {"a group makes nothing", &group, false, QString(), 0},
        {"a read-only model takes nothing", &ndvi, true, QString(), 0},
        {"a model not into itself", &self, false, QString(), 0, ATBItem::AppRoot() + "Model/apc/self.apc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        tree.clear();
        auto window = std::make_unique<ModelControler>(c.path.isEmpty() ? dir.filePath("m.apc") : c.path, c.readOnly);
        if (c.item == &self)
            GuiDriver::ExpectMessage("Warning", "Can not drag self!");
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
    // Characters no save can write are not pasted.
    to = std::make_unique<ModelControler>(dir.filePath("new.apc"), false);
    pasteText("ModelBuilder$$<Process class=\"algo\" name=\"{p}\" processName=\"test.copy&#1;Text\" posX=\"0\" posY=\"0\"/>");
    ASSERT_EQ(to->GetDocument()->GetProcesses().size(), 1);
    EXPECT_EQ(to->GetDocument()->GetProcesses()[0]->GetDescription(), "Copy text file"); // found in the catalogue
}

// ---------------------------------------------------------------------------
// Undo and redo in a real window, driven by mouse, menus and keys

// The history's steps are named in the Edit menu and taken back by keys.
class History : public Tools
{
public:
    // A key pressed in the window, which a dialog may have left inactive.
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QTest::keyClick(viewport(), Qt::Key(key), modifiers);
    }
    QStringList editMenu() { return GuiDriver::MenuEntries(window.get(), "Edit"); }
    // The model as a save would write it.
    QByteArray saved(ModelControler& w)
    {
        const QString path = dir.filePath("snapshot.apc");
        EXPECT_TRUE(w.GetDocument()->SaveFile(path));
        return TestSupport::ReadAll(path);
    }
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
        {"move", [](History& t) { t.mouse.Drag(t.mouse.At("{out}"), t.mouse.At("{out}") + QPoint(40, 20)); }, "Move"},
        {"resize",
         [](History& t) {
             t.mouse.Click(t.mouse.At("{step}"));
             auto* step = dynamic_cast<QGraphicsItem*>(t.window->FindItemBaseById("{step}"));
             const QPoint grip = t.mouse.At(step->mapToScene(QPointF(40.5, 20.5)));
             t.mouse.Move(grip);
             t.mouse.Drag(grip, grip + QPoint(40, 40));
         },
         "Resize"},
        {"delete with its arrow, by key",
         [](History& t) {
             t.mouse.Click(t.mouse.At("{step}"));
             t.key(Qt::Key_Delete, Qt::NoModifier);
         },
         "Delete 1 object"},
        {"connect",
         [](History& t) {
             t.use("Connect");
             OnNextModal([](QWidget* d) { qobject_cast<QDialog*>(d)->accept(); });
             t.mouse.Drag(t.mouse.At("{other}"), t.mouse.At("{step}"));
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
             t.mouse.DoubleClick(t.mouse.At("{out}"));
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
             t.mouse.Click(t.mouse.At("{other}"));
             t.key(Qt::Key_X);
             const QString copied = QApplication::clipboard()->text(); // for a paste elsewhere
             EXPECT_TRUE(copied.startsWith("ModelBuilder$$") && copied.contains("\"{other}\"")) << qPrintable(copied);
         },
         "Cut"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Open(false);
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

// Each step of a drag is written back, so the model lags by the last step.
TEST_F(History, EachDragStepIsWrittenBackAndTheModifiedFlagFollowsTheHistoryThroughASave)
{
    APCVar* in = model()->FindVar("{in}");
    int changes = 0;
    boost::signals2::scoped_connection counting = model()->varChanged.connect([&](APCVar*) { ++changes; });
    EXPECT_FALSE(window->IsModified());
    const QPoint from = mouse.At("{in}");
    mouse.Move(from);
    mouse.Press(from);
    for (int i = 1; i <= 4; ++i)
        mouse.Move(from + QPoint(10 * i, 5 * i), Qt::LeftButton);
    mouse.Release(from + QPoint(40, 20));
    EXPECT_EQ(item("{in}")->pos(), QPointF(40, -130)); // the view follows the pointer
    EXPECT_EQ(in->GetPos(), QPointF(30, -135));        // the model holds the place before the last step
    EXPECT_EQ(changes, 4);                             // one edit per step
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_S);
    EXPECT_FALSE(window->IsModified());
    // Saved files keep the lagging place: existing models were saved that way.
    TestSupport::HeadlessModel file;
    ASSERT_TRUE(file.LoadFile(dir.filePath("m.apc")));
    EXPECT_EQ(file.FindVar("{in}")->GetPos(), QPointF(30, -135));
    const QByteArray onDisk = TestSupport::ReadAll(dir.filePath("m.apc"));

    mouse.Drag(mouse.At("{other}"), mouse.At("{other}") + QPoint(0, 30));
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_Z); // back to what was saved
    EXPECT_FALSE(window->IsModified());
    EXPECT_EQ(saved(*window), onDisk);
    key(Qt::Key_Z); // before the save
    EXPECT_TRUE(window->IsModified());
    key(Qt::Key_Y);
    EXPECT_FALSE(window->IsModified());

    // A click that moves nothing is no step.
    mouse.Drag(mouse.At("{out}"), mouse.At("{out}"));
    EXPECT_EQ(window->GetHistory()->index(), 1);

    // Escape drops the current tool back to Select; Ctrl+A selects every item.
    use("Zoom In");
    key(Qt::Key_Escape, Qt::NoModifier);
    EXPECT_TRUE(dynamic_cast<SelectTool*>(window->GetCurrentTool()));
    key(Qt::Key_A);
    EXPECT_EQ(window->GetScene()->selectedItems().size(), window->GetScene()->GetItems().size());
    // The new entries come after the Edit menu's own.
    EXPECT_EQ(editMenu().mid(0, 3), QStringList({"Copy", "Paste", "Delete"}));
}

