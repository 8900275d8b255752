#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCVar.h"

#include <QApplication>
#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

using namespace Plugin;

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

// A canvas item standing for an object, with a settable kind.
class Item : public QGraphicsRectItem, public GraphicsItemBase
{
public:
    Item(APCObject* object, int kind = UserType + 1)
        : QGraphicsRectItem(0, 0, 40, 20), GraphicsItemBase(object, nullptr), m_kind(kind)
    {
    }
    int type() const override { return m_kind; }
    APCObject* GetObject() override { return m_object; }
    QPolygonF GetOutline() override { return QPolygonF(rect()); }
    void ScaleBy(const QPointF&, double, double) override {}
    void RefreshEnds() override { ++refreshed; }
    int refreshed = 0;

private:
    int m_kind;
};

void moveTo(QWidget* viewport, const QPoint& to, Qt::MouseButtons buttons)
{
    QMouseEvent move(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
}

void moveWithLeftButton(QWidget* viewport, const QPoint& to) { moveTo(viewport, to, Qt::LeftButton); }

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
    QWidget* viewport() { return window.GetView()->viewport(); }
    // Where an item at scene position pos shows in the viewport.
    QPoint onScreen(const QPointF& pos) { return window.GetView()->mapFromScene(pos); }

    ModelControler window{QString(), false};
};

TEST_F(Canvas, EventsReachTheCurrentToolOnlyWhenItIsWilling)
{
    RecordingTool tool;
    window.SetCurrentTool(&tool);
    EXPECT_EQ(tool.calls.join(' '), "click");
    tool.calls.clear();

    // Moves without a button reach a view only while it tracks the mouse, which
    // Qt turns on once an item takes hover events.
    viewport()->setMouseTracking(true);
    int moves = 0;
    QObject::connect(window.GetScene(), &ModelScene::SceneMouseMove, [&] { ++moves; });
    moveTo(viewport(), QPoint(50, 50), Qt::NoButton);
    QTest::mousePress(viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
    moveWithLeftButton(viewport(), QPoint(80, 80));
    QTest::mouseRelease(viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(80, 80));
    EXPECT_EQ(tool.calls.join(' '), "hover press drag release");
    EXPECT_EQ(moves, 2);

    // A tool that is not enabled hears nothing, and the moves are still told.
    tool.enabled = false;
    tool.calls.clear();
    QTest::mousePress(viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
    moveWithLeftButton(viewport(), QPoint(90, 90));
    QTest::mouseRelease(viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(90, 90));
    EXPECT_EQ(tool.calls.join(' '), "");
    EXPECT_EQ(moves, 3);

    tool.enabled = true;
    QEvent enter(QEvent::Enter), leave(QEvent::Leave);
    QApplication::sendEvent(window.GetView(), &enter);
    QApplication::sendEvent(window.GetView(), &leave);
    EXPECT_EQ(tool.calls.join(' '), "enter leave");
}

TEST_F(Canvas, AReadOnlyModelKeepsEveryItemInPlace)
{
    APCVar var;
    APCArrow arrow;
    auto* box = new Item(&var);
    auto* line = new Item(&arrow, QGraphicsItem::UserType + 3);
    window.GetScene()->AddItem(box);
    window.GetScene()->AddItem(line);

    window.GetScene()->SetItemsInteractive(true);
    EXPECT_TRUE(box->flags() & QGraphicsItem::ItemIsMovable);
    EXPECT_FALSE(line->flags() & QGraphicsItem::ItemIsMovable); // arrows follow their ends
    EXPECT_TRUE(line->flags() & QGraphicsItem::ItemIsSelectable);

    window.GetScene()->SetEditable(false);
    window.GetScene()->SetItemsInteractive(true);
    EXPECT_FALSE(box->flags() & QGraphicsItem::ItemIsMovable);
    EXPECT_FALSE(line->flags() & QGraphicsItem::ItemIsMovable);
    EXPECT_TRUE(box->flags() & QGraphicsItem::ItemIsSelectable);

    const QPoint start = onScreen(QPointF(10, 10));
    QTest::mousePress(viewport(), Qt::LeftButton, Qt::NoModifier, start);
    moveWithLeftButton(viewport(), start + QPoint(30, 20));
    QTest::mouseRelease(viewport(), Qt::LeftButton, Qt::NoModifier, start + QPoint(30, 20));
    EXPECT_EQ(box->pos(), QPointF(0, 0));

    window.GetScene()->RemoveItem(line);
    EXPECT_EQ(window.GetScene()->GetItems(), QList<QGraphicsItem*>{box});
    EXPECT_EQ(line->scene(), nullptr); // taken off, not deleted
    delete line;
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
