// Auto Layout (View menu) and the picture export (Print, Model menu), driven
// through the window's menus as a user drives them.
#include "editor/ArrowGraphics.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "support/GuiDriver.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::Action;
using GuiDriver::OnNextModal;

namespace {

// The shipped example models, copied where a save may write.
QStringList copiedExamples(const QTemporaryDir& dir)
{
    QStringList paths;
    const QDir examples(QStringLiteral(MB_SOURCE_DIR "/examples"));
    for (const QString& name : examples.entryList({"*.apc"}, QDir::Files, QDir::Name)) {
        const QString copy = dir.filePath(name);
        EXPECT_TRUE(QFile::copy(examples.filePath(name), copy));
        paths << copy;
    }
    EXPECT_FALSE(paths.isEmpty());
    return paths;
}

// Where the canvas shows each step and var, by id.
QHash<QString, QPointF> placesOf(ModelControler& window)
{
    QHash<QString, QPointF> places;
    for (QGraphicsItem* item : window.GetScene()->GetItems())
        if (item->type() != ArrowGraphics::Type)
            places.insert(dynamic_cast<GraphicsItemBase*>(item)->GetObject()->GetName(), item->pos());
    return places;
}

// Picks name with filter in the next file dialog.
void saveAs(const QString& name, const QString& filter)
{
    OnNextModal([=](QWidget* w) {
        auto* dialog = qobject_cast<QFileDialog*>(w);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog->nameFilters(), QStringList({"SVG picture (*.svg)", "PNG picture (*.png)", "PDF document (*.pdf)"}));
        dialog->selectNameFilter(filter);
        GuiDriver::PickPath(dialog, name);
    });
}

} // namespace

TEST(AutoLayout, LaysTheExamplesOutLeftToRightWithoutOverlapsAsOneSavedEdit)
{
    QTemporaryDir dir;
    const QStringList examples = copiedExamples(dir);
    for (const QString& path : examples) {
        SCOPED_TRACE(path.toStdString());
        QHash<QString, QPointF> laidOut;
        {
            ModelControler window(path, false);
            // A new last entry; the menu's own stay as they were.
            EXPECT_EQ(GuiDriver::MenuEntries(&window, "View"),
                      QStringList({"Full Extent", "1:1", "Fixed Zoom In", "Fixed Zoom Out", "Auto Layout"}));
            ModelCommandManager::Instance()->OnUpdateState();
            QAction* layout = Action(&window, "Auto Layout");
            ASSERT_TRUE(layout->isEnabled());
            layout->trigger();
            EXPECT_TRUE(window.IsModified());

            QList<QGraphicsItem*> boxes;
            int arrows = 0;
            for (QGraphicsItem* item : window.GetScene()->GetItems()) {
                if (item->type() != ArrowGraphics::Type) {
                    boxes << item;
                    continue;
                }
                auto* arrow = static_cast<ArrowGraphics*>(item);
                ASSERT_TRUE(arrow->GetTailItem() && arrow->GetHeadItem());
                EXPECT_LT(arrow->GetTailItem()->sceneBoundingRect().right(),
                          arrow->GetHeadItem()->sceneBoundingRect().left());
                ++arrows;
            }
            EXPECT_GT(arrows, 0);
            for (int i = 0; i < boxes.size(); ++i)
                for (int j = i + 1; j < boxes.size(); ++j)
                    EXPECT_FALSE(boxes[i]->sceneBoundingRect().intersects(boxes[j]->sceneBoundingRect()))
                        << i << " overlaps " << j;
            // The model holds the places the canvas shows, not those before the last move.
            for (APCProcess* p : window.GetDocument()->GetProcesses())
                EXPECT_EQ(window.FindItem(p)->pos(), p->GetPos()) << p->GetDescription().toStdString();
            for (APCVar* v : window.GetDocument()->GetVars())
                EXPECT_EQ(window.FindItem(v)->pos(), v->GetPos()) << v->GetDescription().toStdString();
            laidOut = placesOf(window);
            Action(&window, "Save")->trigger();
        }
        ModelControler reopened(path, false);
        EXPECT_EQ(placesOf(reopened), laidOut);
    }

    ModelControler readOnly(examples.value(0), true);
    ModelCommandManager::Instance()->OnUpdateState();
    EXPECT_FALSE(Action(&readOnly, "Auto Layout")->isEnabled());
}

TEST(ExportPicture, WritesTheWholeModelInTheChosenFormatAndLeavesTheWindowAsItWas)
{
    QTemporaryDir dir;
    const QString model = copiedExamples(dir).filter("scene_ndvi").value(0);
    ModelControler window(model, false);
    window.resize(300, 200);
    window.show();
    // Zoomed in: most of the model lies outside the view.
    for (int i = 0; i < 3; ++i)
        Action(&window, "Fixed Zoom In")->trigger();
    EXPECT_EQ(GuiDriver::MenuEntries(&window, "Model"), QStringList({"Save", "Save As", "Validate Entire Model", "Run", "Pause", "Stop", "Print", "Export for a cluster..."}));
    QGraphicsItem* chosen = window.FindItem(window.GetDocument()->GetProcesses().value(1));
    chosen->setSelected(true);

    struct Case
    {
        const char* name;
        QString typed;
        QString filter;
        QString written;
    };
    const std::vector<Case> cases = {
        {"svg by its filter", "m", "SVG picture (*.svg)", "m.svg"},
        {"png by its filter", "m", "PNG picture (*.png)", "m.png"},
        {"pdf by its filter", "m", "PDF document (*.pdf)", "m.pdf"},
        {"the extension wins over the filter", "n.png", "SVG picture (*.svg)", "n.png"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        saveAs(dir.filePath(c.typed), c.filter);
        Action(&window, "Print")->trigger();
        const QByteArray bytes = TestSupport::ReadAll(dir.filePath(c.written));
        ASSERT_FALSE(bytes.isEmpty());
        if (c.written.endsWith(".svg")) {
            QDomDocument svg;
            ASSERT_TRUE(svg.setContent(bytes));
            QString texts;
            const QDomNodeList nodes = svg.elementsByTagName("text");
            for (int i = 0; i < nodes.size(); ++i)
                texts += nodes.at(i).toElement().text() + ' ';
            // Whole names, wrapped onto lines, not cut as the canvas cuts them.
            texts = texts.simplified();
            for (APCProcess* p : window.GetDocument()->GetProcesses())
                EXPECT_TRUE(texts.contains(p->GetDescription().simplified())) << p->GetDescription().toStdString();
            EXPECT_FALSE(texts.contains(QChar(0x2026)));
        } else if (c.written.endsWith(".png")) {
            QImage image;
            ASSERT_TRUE(image.loadFromData(bytes, "PNG"));
            // The whole model at twice its size, not the view's part.
            EXPECT_GT(image.width(), 2 * window.GetScene()->itemsBoundingRect().width());
        } else {
            EXPECT_TRUE(bytes.startsWith("%PDF-"));
            EXPECT_TRUE(bytes.trimmed().endsWith("%%EOF"));
        }
        EXPECT_FALSE(window.IsModified());
        EXPECT_EQ(window.GetScene()->selectedItems(), QList<QGraphicsItem*>({chosen}));
    }

    // No handles: the picture with a step selected is the one without.
    saveAs(dir.filePath("unselected.png"), "PNG picture (*.png)");
    chosen->setSelected(false);
    Action(&window, "Print")->trigger();
    EXPECT_EQ(QImage(dir.filePath("unselected.png")), QImage(dir.filePath("m.png")));
}
