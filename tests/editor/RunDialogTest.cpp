// The run dialog and the road of a run with free inputs, driven as a user would.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/RunCmdDlg.h"
#include "editor/ModelControler.h"
#include "engine/SequenceControl.h"
#include "support/GuiDriver.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Plugin;
using GuiDriver::OnNextModal;

namespace {

void click(QWidget* root, const QString& buttonText)
{
    for (QAbstractButton* b : root->findChildren<QAbstractButton*>())
        if (b->text() == buttonText && b->isVisible()) {
            QTest::mouseClick(b, Qt::LeftButton);
            return;
        }
    ADD_FAILURE() << "no button " << buttonText.toStdString();
}

// Answers the next message box with OK and hands back its text.
void answerMessage(QString* text)
{
    OnNextModal([text](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_TRUE(box);
        *text = box->text();
        box->accept();
    });
}

QString outputPanel(ModelControler& window)
{
    auto* tabs = qobject_cast<QTabWidget*>(window.findChild<QDockWidget*>()->widget());
    return qobject_cast<QTextEdit*>(tabs->widget(0))->toPlainText();
}

} // namespace

TEST(RunDialog, RefusesAnEmptyTabByItsTitleAndTakesBlanks)
{
    RunCmdDlg dialog(nullptr);
    EXPECT_EQ(dialog.windowTitle(), "Run");
    auto* tabs = dialog.findChild<QTabWidget*>();
    ASSERT_TRUE(tabs);
    EXPECT_EQ(tabs->count(), 0); // the drawn placeholders are gone
    for (const char* title : {"Scene", "Scene"}) {
        DataTypeWidget* w = DataTypeFactory::CreateDataTypeWidget("string", "");
        w->SetCaption(title);
        dialog.AddPage(w, title);
    }
    tabs->setCurrentIndex(1);
    auto* first = qobject_cast<DataTypeWidget*>(tabs->widget(0));
    first->SetValue("given");

    QString message;
    answerMessage(&message);
    OnNextModal([&](QWidget*) {}); // the dialog itself
    QTimer::singleShot(0, [&] { click(&dialog, "OK"); });
    QTimer::singleShot(300, [&] {
        // The second tab is empty: named by its title, and the dialog stays.
        EXPECT_EQ(message, "Please set value: Scene");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(tabs->currentIndex(), 1);
        auto* edit = tabs->widget(1)->findChild<QLineEdit*>();
        ASSERT_TRUE(edit);
        QTest::keyClicks(edit, "  "); // blanks count as a value
        click(&dialog, "OK");
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
}

TEST(RunDialog, CancelRejects)
{
    RunCmdDlg cancelled(nullptr);
    QTimer::singleShot(0, [&] { click(&cancelled, "Cancel"); });
    EXPECT_EQ(cancelled.exec(), QDialog::Rejected);
}

// Each shipped model, opened in its window and run on the sample scenes into a
// fresh folder, with its inputs given in the run dialog as a user gives them.
TEST(RunDialog, EveryShippedModelRunsFromItsWindow)
{
    const QString models = QCoreApplication::applicationDirPath() + "/../Model/apc/";
    const QString scenes = QStringLiteral(MB_SOURCE_DIR "/examples/data/scenes");
    QTemporaryDir out;
    struct Case { const char* model; QStringList outputs; };
    const std::vector<Case> cases = {
        {"scene_ndvi.apc", {"scene_01_ndvi.tif", "scene_02_ndvi.tif", "scene_03_ndvi.tif"}},
        {"batch_nested.apc", {"scene_01_nested.tif", "scene_02_nested.tif", "scene_03_nested.tif"}},
        {"ndvi_one.apc", {"one.tif"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.model);
        ModelControler window(models + c.model, false);
        window.SetModelName(c.model);
        OnNextModal([&](QWidget* w) {
            auto* dialog = qobject_cast<RunCmdDlg*>(w);
            ASSERT_TRUE(dialog);
            auto* tabs = dialog->findChild<QTabWidget*>();
            for (int i = 0; i < tabs->count(); ++i) {
                tabs->setCurrentIndex(i);
                const QString title = tabs->tabText(i);
                QWidget* page = tabs->widget(i);
                if (title == "Scene folders") {
                    // Add... asks for a folder; the user picks the scenes.
                    OnNextModal([&](QWidget* picker) {
                        auto* files = qobject_cast<QFileDialog*>(picker);
                        ASSERT_TRUE(files);
                        auto* name = files->findChild<QLineEdit*>("fileNameEdit");
                        ASSERT_TRUE(name);
                        name->setText(scenes);
                        QTest::keyClick(name, Qt::Key_Return);
                    });
                    click(page, "Add...");
                    continue;
                }
                auto* edit = page->findChild<QLineEdit*>();
                ASSERT_TRUE(edit) << title.toStdString();
                const QString value = title == "Scene" ? scenes + "/scene_01.tif"
                                    : title == "NDVI file" ? out.filePath("one.tif")
                                                           : out.path();
                QTest::keyClicks(edit, value);
            }
            click(dialog, "OK");
        });
        GuiDriver::Action(&window, "Run")->trigger();
        ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == 0; }, 60000));
        const QString log = outputPanel(window);
        EXPECT_TRUE(log.contains("Fail: 0")) << qPrintable(log);
        for (const QString& file : c.outputs)
            EXPECT_TRUE(QFileInfo::exists(out.filePath(file))) << file.toStdString();
    }
}
