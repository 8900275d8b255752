// A double click on each kind of object of a real canvas opens that object's
// dialog; what is accepted reaches the model only when it may be edited.
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelView.h"
#include "engine/APCAlgo.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCParameter.h"
#include "model/APCProcess.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QGraphicsItem>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <memory>

using namespace Plugin;

namespace {

QString modelPath(const char* name) { return QCoreApplication::applicationDirPath() + "/../Model/apc/" + name; }

std::unique_ptr<ModelControler> openShown(const char* model, bool readOnly)
{
    auto window = std::make_unique<ModelControler>(modelPath(model), readOnly);
    window->resize(1000, 800);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    return window;
}

// The item of the first object of that kind ("process:<class>", "var", "arrow").
QGraphicsItem* itemOfKind(ModelControler& window, const QString& kind)
{
    for (QGraphicsItem* item : window.GetView()->scene()->items()) {
        auto* base = dynamic_cast<GraphicsItemBase*>(item);
        APCObject* object = base ? base->GetObject() : nullptr;
        if (!object)
            continue;
        const QString type = APCModel::ObjectType(object);
        const QString found = type == "process" ? "process:" + object->GetClass() : type.isEmpty() ? "arrow" : type;
        if (found == kind)
            return item;
    }
    return nullptr;
}

// Double-clicks the item where nothing else covers it and names the modal that opens.
QString dialogOnDoubleClick(ModelControler& window, QGraphicsItem* item)
{
    QString opened;
    GuiDriver::OnNextModal([&](QWidget* modal) {
        opened = modal->metaObject()->className();
        modal->close();
    });
    ModelView* view = window.GetView();
    view->centerOn(item);
    const QPoint at = view->mapFromScene(item->sceneBoundingRect().center());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    return opened;
}

} // namespace

TEST(DoubleClick, EachKindOfObjectOpensItsOwnDialog)
{
    struct Case { const char* model; const char* kind; const char* dialog; };
    const Case cases[] = {
        {"scene_ndvi.apc", "process:algo", "Plugin::AlgoForm"}, // the catalogue's form
        {"scene_ndvi.apc", "process:RasterFileIterator", "Plugin::APCFileIteratorDlg"},
        {"scene_ndvi.apc", "var", "Plugin::APCVarDlg"},
        {"batch_nested.apc", "process:model", "Plugin::APCModelFileDlg"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.kind);
        auto window = openShown(c.model, false);
        QGraphicsItem* item = itemOfKind(*window, c.kind);
        ASSERT_TRUE(item);
        EXPECT_EQ(dialogOnDoubleClick(*window, item), c.dialog);
        EXPECT_FALSE(window->IsModified()); // closed without OK: nothing applied
    }
}

TEST(DoubleClick, AnAcceptedFormChangesTheModelOnlyWhenItMayBeEdited)
{
    struct Case { const char* name; bool readOnly; bool applied; };
    const Case cases[] = {
        {"editable", false, true},
        {"read-only: opens for reading", true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto window = openShown("ndvi_one.apc", c.readOnly);
        QGraphicsItem* item = itemOfKind(*window, "process:algo");
        ASSERT_TRUE(item);
        auto* algo = dynamic_cast<APCAlgo*>(dynamic_cast<GraphicsItemBase*>(item)->GetObject());
        // The user changes the red band from 3 to 5 in the form and presses OK.
        GuiDriver::OnNextModal([](QWidget* form) {
            for (QLineEdit* edit : form->findChildren<QLineEdit*>())
                if (edit->text() == "3") {
                    edit->selectAll();
                    QTest::keyClicks(edit, "5");
                }
            for (QPushButton* button : form->findChildren<QPushButton*>())
                if (button->text() == "OK")
                    QTest::mouseClick(button, Qt::LeftButton);
        });
        ModelView* view = window->GetView();
        view->centerOn(item);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                           view->mapFromScene(item->sceneBoundingRect().center()));
        EXPECT_EQ(algo->GetParameter("Red Band").value, c.applied ? "5" : "3") << qPrintable(algo->DialogText());
        EXPECT_EQ(window->IsModified(), c.applied);
    }
}

// While a run goes on its steps read the model from pool threads: no dialog
// opens, so nothing can be edited under them.
TEST(DoubleClick, NoDialogOpensOnARunningModel)
{
    QTemporaryDir dir;
    {
        TestSupport::HeadlessModel model;
        APCAlgo* sleep = TestSupport::AddAlgo(model, "test.sleep");
        for (APCParameter& p : sleep->GetParameters())
            p.value = "1500";
        ASSERT_TRUE(model.SaveFile(dir.filePath("slow.apc")));
    }
    ModelControler window(dir.filePath("slow.apc"), false);
    window.resize(1000, 800);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QGraphicsItem* item = itemOfKind(window, "process:algo");
    ASSERT_TRUE(item);
    GuiDriver::Action(&window, "Run")->trigger();
    ASSERT_EQ(window.GetSequenceControl()->GetState(), SequenceControl::Running);

    bool opened = false;
    QTimer::singleShot(500, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            opened = true;
            modal->close();
        }
    });
    ModelView* view = window.GetView();
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                       view->mapFromScene(item->sceneBoundingRect().center()));
    QTest::qWait(600);
    EXPECT_FALSE(opened);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }));
    // Once the run is over, the same double click opens the form again.
    EXPECT_EQ(dialogOnDoubleClick(window, item), "Plugin::AlgoForm");
}
