// Canvas items of a loaded model, and the scene and view that carry them: places,
// shapes, states, and events that reach the current tool.
#include "editor/AlgoGraphics.h"
#include "editor/ArrowGraphics.h"
#include "editor/IteratorGraphics.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "editor/VarGraphics.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "support/CanvasDriver.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

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
    for (QGraphicsItem* item : window.GetScene()->GetItems()) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        if (base && base->GetObject()->GetName() == id)
            return dynamic_cast<T*>(item);
    }
    return nullptr;
}

// Paints item once, as a view would.
void paintOnce(QGraphicsItem* item)
{
    QImage image(400, 400, QImage::Format_ARGB32);
    QPainter painter(&image);
    QStyleOptionGraphicsItem option;
    item->paint(&painter, &option, nullptr);
}

} // namespace

class CanvasItems : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), kModel));
        window = std::make_unique<ModelControler>(dir.filePath("m.apc"), false);
    }
    QTemporaryDir dir;
    std::unique_ptr<ModelControler> window;
};

// ---------------------------------------------------------------------------
// The scene and view of an empty window, with items standing for objects

namespace {

// Writes down every call it gets, in order.
class RecordingTool : public ModelTool
{
public:
    bool enabled = true;
    QStringList calls;
    void OnClick() override { calls << "click"; }
    bool IsEnable() override { return enabled; }
    bool ReservedQuery() override { return true; }
    void OnMousePress(QGraphicsSceneMouseEvent*) override { calls << "press"; }
    void OnMouseDrag(QGraphicsSceneMouseEvent*) override { calls << "drag"; }
    void OnMouseRelease(QGraphicsSceneMouseEvent*) override { calls << "release"; }
    void OnMouseHover(QGraphicsSceneMouseEvent*) override { calls << "hover"; }
    void OnEnter(QEvent*) override { calls << "enter"; }
    void OnLeave(QEvent*) override { calls << "leave"; }
};

} // namespace

class Canvas : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window.resize(400, 300);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    ModelControler window{QString(), false};
    CanvasDriver::Mouse mouse{window};
};

TEST_F(Canvas, EventsReachTheCurrentToolOnlyWhenItIsWilling)
{
    RecordingTool tool;
    window.SetCurrentTool(&tool);
    EXPECT_EQ(tool.calls.join(' '), "click");
    tool.calls.clear();

    // Moves without a button reach a view only while it tracks the mouse, which
    // Qt turns on once an item takes hover events.
    mouse.Viewport()->setMouseTracking(true);
    int moves = 0;
    QObject::connect(window.GetScene(), &ModelScene::SceneMouseMove, [&] { ++moves; });
    mouse.Move(QPoint(50, 50));
    mouse.Press(QPoint(60, 60));
    mouse.Move(QPoint(80, 80), Qt::LeftButton);
    mouse.Release(QPoint(80, 80));
    EXPECT_EQ(tool.calls.join(' '), "hover press drag release");
    EXPECT_EQ(moves, 2);

    // A tool that is not enabled hears nothing, and the moves are still told.
    tool.enabled = false;
    tool.calls.clear();
    mouse.Press(QPoint(60, 60));
    mouse.Move(QPoint(90, 90), Qt::LeftButton);
    mouse.Release(QPoint(90, 90));
    EXPECT_EQ(tool.calls.join(' '), "");
    EXPECT_EQ(moves, 3);

    tool.enabled = true;
    QEvent enter(QEvent::Enter), leave(QEvent::Leave);
    QApplication::sendEvent(window.GetView(), &enter);
    QApplication::sendEvent(window.GetView(), &leave);
    EXPECT_EQ(tool.calls.join(' '), "enter leave");
}

TEST_F(Canvas, TheCanvasFollowsTheDocument)
{
    EXPECT_FALSE(window.IsModified());
    auto* var = new APCVar;
    ASSERT_TRUE(window.AddObject(var));
    EXPECT_TRUE(window.IsModified()); // an add is an edit
    ASSERT_EQ(window.GetScene()->GetItems().size(), 1);
    QGraphicsItem* item = window.GetScene()->GetItems().first();

    // The engine reports clones: same id, other object.
    std::unique_ptr<APCObject> clone(var->Clone());
    EXPECT_EQ(window.FindItem(clone.get()), item);
    APCVar stranger;
    EXPECT_EQ(window.FindItem(&stranger), nullptr);
    EXPECT_EQ(window.FindItem(nullptr), nullptr);

    // Removing the object takes its item off the canvas and the object dies.
    window.SetModified(false);
    window.RemoveObject(var);
    EXPECT_EQ(window.GetDocument()->FindVar(clone->GetName()), nullptr);
    EXPECT_TRUE(window.GetScene()->GetItems().isEmpty());
    EXPECT_EQ(item->scene(), nullptr);
    EXPECT_TRUE(window.IsModified());
}

TEST_F(CanvasItems, LoadedItemsStandPaintScaleAndShowStates)
{
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
    auto* in = itemOf<ArrowGraphics>(*window, window->GetDocument()->GetArrows()[0]->GetName());
    ASSERT_TRUE(in);
    EXPECT_EQ(in->GetHeadItem(), algo);
    EXPECT_EQ(in->GetTailItem(), scene);
    EXPECT_EQ(in->zValue(), -1.0);
    EXPECT_FALSE(in->flags() & QGraphicsItem::ItemIsMovable);
    // A var of no size has no outline to meet: its arrow still paints.
    paintOnce(itemOf<ArrowGraphics>(*window, window->GetDocument()->GetArrows()[1]->GetName()));

    // An arrow vanishes while its ends overlap.
    paintOnce(in);
    const QPolygonF head = in->GetHeadShape();
    ASSERT_EQ(head.size(), 3);
    EXPECT_EQ(head[0], QPointF(100, 20)); // on the algorithm's top edge, where it points
    algo->setPos(100, -150); // on top of its input var
    paintOnce(in);
    EXPECT_EQ(in->GetHeadShape(), head); // nothing painted, nothing recomputed
    algo->setPos(100, 50);

    // Step states colour the shapes, but never a var.
    algo->SetProgress(42.9);
    algo->SetState(1);
    EXPECT_EQ(algo->brush().color(), QColor(Qt::yellow));
    EXPECT_EQ(algo->GetProgress(), 42);
    algo->SetState(2);
    EXPECT_EQ(algo->brush().color(), QColor(Qt::darkYellow));
    EXPECT_EQ(algo->GetProgress(), 100);
    algo->SetState(-1); // a failure has no colour of its own
    EXPECT_EQ(algo->brush().color(), QColor(Qt::lightGray));
    EXPECT_EQ(algo->GetProgress(), 0);
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

