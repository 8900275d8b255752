// The canvas tools driven with real mouse events on the view, the model checked
// afterwards: each step of a drag is written back with the place the item had
// before it, and the bands and lines the tools raise come down as the editor
// has always taken them down.
#include "editor/ArrowGraphics.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "model/APCArrow.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "support/CanvasDriver.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFontMetrics>
#include <QGraphicsRectItem>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

namespace {

// Closes every modal window that opens while it lives, and counts them.
class ModalWatch
{
public:
    ModalWatch()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                ++opened;
                modal->close();
            }
        });
        m_timer.start(10);
    }
    int opened = 0;

private:
    QTimer m_timer;
};

} // namespace

class Tools : public ::testing::Test
{
protected:
    void SetUp() override { Open(false); }

    void Open(bool readOnly)
    {
        ASSERT_TRUE(TestSupport::WriteAll(dir.filePath("m.apc"), TestSupport::kStepAndThreeVars));
        window = CanvasDriver::OpenShown(dir.filePath("m.apc"), readOnly);
        mouse.SetWindow(*window);
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

TEST_F(Tools, EachStepOfADragIsWrittenBackSoTheModelLagsByTheLastStep)
{
    APCVar* in = model()->FindVar("{in}");
    int changes = 0;
    boost::signals2::scoped_connection counting = model()->varChanged.connect([&](APCVar*) { ++changes; });

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

    // Saved files keep the lagging place: existing models were saved that way.
    use("Save");
    TestSupport::HeadlessModel saved;
    ASSERT_TRUE(saved.LoadFile(dir.filePath("m.apc")));
    EXPECT_EQ(saved.FindVar("{in}")->GetPos(), QPointF(30, -135));
}

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

TEST_F(Tools, AReadOnlyModelIsNeitherMovedResizedNorConnected)
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

    use("Connect");
    ModalWatch watch;
    mouse.Drag(mouse.At("{other}"), mouse.At("{step}"));
    EXPECT_EQ(watch.opened, 0);
    EXPECT_EQ(model()->GetArrows().size(), 1);
    EXPECT_EQ(strayItems(), 0);
    EXPECT_FALSE(window->IsModified());
}

// Needs the arrow dialog registered for arrows: until then no dialog opens and
// the two joining rows fail.
TEST_F(Tools, ConnectJoinsAVarAndAStepThroughTheArrowDialog)
{
    struct Case { const char* name; const char* from; const char* to; bool joins; };
    const Case cases[] = {
        {"var to step", "{other}", "{step}", true},
        {"step to var", "{step}", "{out}", true},
        {"var to var: refused", "{other}", "{out}", false},
        {"step to nothing: refused", "{step}", nullptr, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Open(false);
        use("Connect");
        const QPoint to = c.to ? mouse.At(c.to) : mouse.At(QPointF(0, 250));
        QString dialog;
        std::unique_ptr<ModalWatch> watch;
        if (c.joins)
            GuiDriver::OnNextModal([&](QWidget* modal) {
                dialog = modal->metaObject()->className();
                qobject_cast<QDialog*>(modal)->accept();
            });
        else
            watch = std::make_unique<ModalWatch>();
        mouse.Drag(mouse.At(c.from), to);
        if (c.joins) // the dialog, or the driver's failure when none opened
            TestSupport::WaitUntil([&] { return !dialog.isEmpty(); }, 6000);

        EXPECT_EQ(strayItems(), 0);
        EXPECT_EQ(model()->GetArrows().size(), c.joins ? 2 : 1);
        if (watch) {
            EXPECT_EQ(watch->opened, 0);
        }
        if (!c.joins || model()->GetArrows().size() != 2)
            continue;
        EXPECT_EQ(dialog, "Plugin::APCArrowDlg");
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

TEST_F(Tools, ABandSelectsWhatItTouchesAndGoesAway)
{
    mouse.Drag(mouse.At(QPointF(-120, -200)), mouse.At(QPointF(40, 10)));
    QStringList selected;
    for (QGraphicsItem* it : scene()->selectedItems())
        if (it->type() != ArrowGraphics::Type)
            selected << dynamic_cast<GraphicsItemBase*>(it)->GetObject()->GetName();
    selected.sort();
    EXPECT_EQ(selected, QStringList({"{in}", "{step}"}));
    EXPECT_EQ(strayItems(), 0);
    EXPECT_FALSE(window->IsModified());
}


TEST_F(Tools, PanScrollsTheViewAndMovesNoItem)
{
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

TEST_F(Tools, ALongNameShowsItsStartOnTheCanvasAndWholeAsTheToolTip)
{
    QGraphicsItem* step = item("{step}");
    APCProcess* object = model()->FindProcess("{step}");
    EXPECT_EQ(step->toolTip(), "Convert raster to another format");
    // Two long names that begin alike look alike on the canvas: the label is cut
    // at its end, not on both sides of its middle.
    auto label = [&](const QString& name) {
        object->SetDescription(name);
        QImage image(step->sceneBoundingRect().size().toSize(), QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        scene()->render(&painter, QRectF(image.rect()), step->sceneBoundingRect());
        return image;
    };
    const QString shorter = "Convert raster to another format";
    const QString longer = "Convert raster to another format, band by band, into a new file";
    ASSERT_GT(QFontMetrics(QFont()).horizontalAdvance(shorter), 120); // both wider than the item
    EXPECT_TRUE(label(shorter) == label(longer));
    EXPECT_FALSE(label(shorter) == label("Reproject raster to another format"));

    APCVar* in = model()->FindVar("{in}");
    in->SetDescription("Scene of the first of May");
    model()->NotifyVarChanged(in);
    EXPECT_EQ(item("{in}")->toolTip(), "Scene of the first of May");
}

