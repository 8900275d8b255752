// The model window: its menus and their enable rules, runs into the log panels,
// zooms, saving, Auto Layout, the picture export (Print), the cluster export and
// Validate's warnings; and the run dialog of a model with free inputs.
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/RunCmdDlg.h"
#include "editor/ArrowGraphics.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelRecovery.h"
#include "editor/ModelScene.h"
#include "editor/ModelTool.h"
#include "editor/ModelView.h"
#include "engine/APCAlgo.h"
#include "engine/SequenceControl.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/SceneBatch.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDockWidget>
#include <QDomDocument>
#include <QFileDialog>
#include <QImage>
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
using GuiDriver::Action;

namespace {

QString panelText(ModelControler& window, int panel)
{
    auto* dock = window.findChild<QDockWidget*>();
    auto* tabs = dock ? qobject_cast<QTabWidget*>(dock->widget()) : nullptr;
    auto* log = tabs ? qobject_cast<QTextEdit*>(tabs->widget(panel)) : nullptr;
    return log ? log->toPlainText() : QString();
}

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

// Answers the run dialog with the scenes and the output folder, then runs next
// on the modal window that follows it.
void answerInputs(const TestSupport::SceneBatch& batch, std::function<void(QWidget*)> next)
{
    OnNextModal([&batch, next](QWidget* dialog) {
        ASSERT_TRUE(qobject_cast<RunCmdDlg*>(dialog));
        GuiDriver::AnswerRunTabs(
            dialog, [&](const QString& title) { return title == "Scene folders" ? batch.scenes : batch.out; }, next);
    });
}

} // namespace

class ModelWindow : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(TestSupport::WriteAll(path(), TestSupport::kStepAndThreeVars)); }
    QString path() const { return dir.filePath("m.apc"); }
    QTemporaryDir dir;
    ModelCommandManager* manager = ModelCommandManager::Instance();
};

TEST_F(ModelWindow, MenusEnableRulesZoomsAndASaveOnAFullDiskFollowTheWindowAndTheRun)
{
    ModelControler window(path(), false);
    EXPECT_EQ(window.windowTitle(), "Model Builder");
    EXPECT_EQ(GuiDriver::MenuEntries(&window), QStringList({"Model", "Edit", "Insert", "View"}));
    EXPECT_EQ(Action(&window, "Delete")->shortcut(), QKeySequence(QKeySequence::Delete));
    EXPECT_EQ(manager->FindCommand(Action(&window, "Select")), window.GetCurrentTool());
    EXPECT_FALSE(window.findChild<QDockWidget*>()->isVisible());
    manager->OnUpdateState();
    EXPECT_FALSE(Action(&window, "Save")->isEnabled()); // nothing to save
    EXPECT_FALSE(Action(&window, "Copy")->isEnabled()); // nothing selected
    EXPECT_TRUE(Action(&window, "Run")->isEnabled());
    EXPECT_FALSE(Action(&window, "Pause")->isEnabled());
    EXPECT_FALSE(Action(&window, "Stop")->isEnabled());
    EXPECT_TRUE(Action(&window, "Select")->isChecked());
    EXPECT_FALSE(Action(&window, "Pan")->isChecked());

    // A tool shows checked at the next tick, not at once.
    Action(&window, "Pan")->trigger();
    EXPECT_FALSE(Action(&window, "Pan")->isChecked());
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Pan")->isChecked());
    EXPECT_FALSE(Action(&window, "Select")->isChecked());

    // Under the pan tool nothing can be selected; back to the select tool.
    window.GetScene()->GetItems().first()->setSelected(true);
    EXPECT_TRUE(window.GetScene()->selectedItems().isEmpty());
    Action(&window, "Select")->trigger();
    window.SetModified(true);
    window.GetScene()->GetItems().first()->setSelected(true);
    QApplication::clipboard()->setText("some text of another program");
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Save")->isEnabled());
    EXPECT_TRUE(Action(&window, "Copy")->isEnabled());
    EXPECT_FALSE(Action(&window, "Paste")->isEnabled());
    QApplication::clipboard()->setText("ModelBuilder$$<Vars/>");
    manager->OnUpdateState();
    EXPECT_TRUE(Action(&window, "Paste")->isEnabled());

    // Fixed zooms keep the scale and the view in step.
    window.resize(800, 500);
    QAction* out = Action(&window, "Fixed Zoom Out");
    for (int i = 0; i < 12; ++i)
        out->trigger();
    // Stops at the last step that is not below 0.001: nine halvings from 1.0.
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 0.001953125);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().m11(), 0.001953125);

    Action(&window, "Fixed Zoom In")->trigger();
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 0.001953125 * 1.5);

    window.GetView()->translate(30, 20);
    const QTransform before = window.GetView()->transform();
    Action(&window, "1:1")->trigger();
    EXPECT_DOUBLE_EQ(window.GetScene()->GetScale(), 1.0);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().m11(), 1.0);
    EXPECT_DOUBLE_EQ(window.GetView()->transform().dx(), before.dx()); // the scroll offset stays

    Action(&window, "Full Extent")->trigger();
    EXPECT_GT(window.GetScene()->GetScale(), 0.0);

    ModelControler readOnly(path(), true);
    readOnly.SetModified(true);
    manager->OnUpdateState();
    for (const char* caption : {"Save", "Paste", "Delete", "Add Variable", "Connect", "Auto Layout"})
        EXPECT_FALSE(Action(&readOnly, caption)->isEnabled()) << caption;
    EXPECT_TRUE(Action(&readOnly, "Run")->isEnabled()); // a read-only model runs

    // A save on a full disk keeps the old file whole.
    const QByteArray onDisk = TestSupport::ReadAll(path());
    window.GetDocument()->FindVar("{out}")->SetDescription("Renamed");
    {
        const TestSupport::FileSizeLimit full(onDisk.size() / 2);
        Action(&window, "Save")->trigger();
    }
    EXPECT_FALSE(window.IsModified()); // saving stays silent, whatever it gave
    EXPECT_EQ(TestSupport::ReadAll(path()), onDisk);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"m.apc"}); // no temporary left
}

TEST_F(ModelWindow, ChangesItsFileLacksOutliveTheWindowUntilSavedOrThrownAway)
{
    const QString copy = ModelRecovery::CopyPath(path());
    const QByteArray onDisk = TestSupport::ReadAll(path());
    const auto rename = [](ModelControler& window) {
        window.BeginEdit("Rename");
        window.GetDocument()->FindVar("{out}")->SetDescription("Renamed");
        window.EndEdit();
        ModelCommandManager::Instance()->OnUpdateState();
    };
    const auto renamed = [](ModelControler& window) { return window.GetDocument()->FindVar("{out}")->GetDescription() == "Renamed"; };
    {
        ModelControler window(path(), false);
        rename(window);
        ASSERT_TRUE(TestSupport::WaitUntil([&] { return QFile::exists(copy); }, 5000)); // with no save
        // A save on a full disk still clears the flag, and the window closes without
        // a question; the changes stay in the copy.
        {
            const TestSupport::FileSizeLimit full(onDisk.size() / 2);
            Action(&window, "Save")->trigger();
        }
        EXPECT_FALSE(window.IsModified());
        EXPECT_TRUE(window.close());
    }
    EXPECT_EQ(TestSupport::ReadAll(path()), onDisk);
    {
        OnNextModal([&](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->windowTitle(), "Recover changes");
            EXPECT_TRUE(box->text().startsWith("Changes to " + path() + " made up to ")) << box->text().toStdString();
            QTest::mouseClick(box->defaultButton(), Qt::LeftButton);
        });
        ModelControler window(path(), false);
        EXPECT_TRUE(renamed(window));
        EXPECT_TRUE(window.IsModified());
        // Taking them up is one step of the history.
        Action(&window, "Undo Recover changes")->trigger();
        EXPECT_FALSE(renamed(window));
        EXPECT_FALSE(window.IsModified());
        Action(&window, "Redo Recover changes")->trigger();
        GuiDriver::ExpectMessage("quit", "Save Edited Contents?", QMessageBox::No);
        EXPECT_TRUE(window.close());
    }
    EXPECT_FALSE(QFile::exists(copy)); // thrown away with the window's changes

    ModelControler window(path(), false); // nothing to offer
    EXPECT_FALSE(renamed(window));
    rename(window);
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return QFile::exists(copy); }, 5000));
    Action(&window, "Save")->trigger();
    EXPECT_FALSE(QFile::exists(copy)); // the file has it all now
    EXPECT_NE(TestSupport::ReadAll(path()), onDisk);
}

TEST(RunDialog, RefusesAnEmptyTabByItsTitleTakesBlanksAndCancels)
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

    OnNextModal([&](QWidget*) {
        // The second tab is empty: named by its title, and the dialog stays.
        GuiDriver::ExpectMessage("Error", "Please set value: Scene");
        GuiDriver::Click(&dialog, "OK");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(tabs->currentIndex(), 1);
        GuiDriver::TypeInto(tabs->widget(1), "edit", "  "); // blanks count as a value
        GuiDriver::Click(&dialog, "OK");
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    QTimer::singleShot(0, [&] { GuiDriver::Click(&dialog, "Cancel"); });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
}

// ---------------------------------------------------------------------------
// Auto Layout (View menu) and the picture export (Print, Model menu)

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
            laidOut = placesOf(window);
            Action(&window, "Save")->trigger();
        }
        // The model held the places the canvas showed, not those before the last move.
        ModelControler reopened(path, false);
        EXPECT_EQ(placesOf(reopened), laidOut);
    }
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

// ---------------------------------------------------------------------------
// Model > Export for a cluster...

TEST(ClusterExportWindow, AsksTheInputsAndAFolderWritesTheWorkflowAndTellsTheCommand)
{
    TestSupport::SceneBatch batch;
    ModelControler window(batch.model, false);
    QAction* exportAction = GuiDriver::Action(&window, "Export for a cluster...");
    ASSERT_TRUE(exportAction);

    // Not while a run goes on.
    answerInputs(batch, nullptr);
    GuiDriver::Action(&window, "Run")->trigger();
    ASSERT_EQ(window.GetSequenceControl()->GetState(), SequenceControl::Running);
    GuiDriver::ExpectMessage("Error", "The model is running: export it when the run has ended.");
    exportAction->trigger();
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return window.GetSequenceControl()->GetState() == SequenceControl::Idle; }, 60000));
    EXPECT_TRUE(window.findChild<QDockWidget*>()->isVisibleTo(&window)); // a run shows the log
    EXPECT_TRUE(panelText(window, 0).contains("Fail: 0")) << qPrintable(panelText(window, 0));
    EXPECT_EQ(panelText(window, 1), "");
    EXPECT_FALSE(window.IsModified()); // a run is not an edit

    const QString flow = batch.dir.filePath("flow");
    QDir().mkpath(flow);
    answerInputs(batch, [&](QWidget* picker) {
        GuiDriver::ExpectMessage("Export for a cluster", "The workflow is written. Run it on this machine with:\n\n"
                                                         "snakemake --profile " + flow + "/profiles/local");
        GuiDriver::PickPath(picker, flow);
    });
    exportAction->trigger();
    const QString snakefile = QString::fromUtf8(TestSupport::ReadAll(flow + "/Snakefile"));
    EXPECT_TRUE(snakefile.contains("\"" + TestSupport::MbrunPath() + "\"")) << qPrintable(snakefile);
    EXPECT_TRUE(snakefile.contains(batch.scenes)) << qPrintable(snakefile);
    const QStringList rounds = QString::fromUtf8(TestSupport::ReadAll(flow + "/rounds.tsv")).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(rounds.size(), 4);
    EXPECT_TRUE(rounds[3].startsWith("scene_03-")) << qPrintable(rounds[3]);
    for (const char* profile : {"local", "slurm", "cluster"})
        EXPECT_TRUE(QFile::exists(flow + "/profiles/" + profile + "/config.yaml")) << profile;
}

// Validate tells of options GDAL refuses, after its own verdict.
TEST(ValidateOptions, ARefusedOptionFollowsTheSucceedBoxNamingStepParameterAndReason)
{
    QTemporaryDir dir;
    {
        TestSupport::HeadlessModel model;
        struct Step { const char* algorithm; const char* options; };
        for (const Step& s : {Step{"raster.hillshade", "COMPRESS=DEFLATE"}, Step{"raster.translate", "COMPRESS=NOPE"}}) {
            APCAlgo* step = TestSupport::AddAlgo(model, s.algorithm);
            TestSupport::SetConstant(TestSupport::VarOf(model, step, "In File"), dir.filePath("in.tif"));
            TestSupport::SetConstant(TestSupport::VarOf(model, step, "Out File"), dir.filePath("out.tif"));
            TestSupport::SetLiteral(model, step, "Creation options", s.options);
        }
        ASSERT_TRUE(model.SaveFile(dir.filePath("options.apc")));
    }
    ModelControler window(dir.filePath("options.apc"), false);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    QStringList boxes;
    std::function<void(QWidget*)> answer = [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_TRUE(box);
        boxes << box->windowTitle() + ": " + box->text();
        if (boxes.size() == 1)
            GuiDriver::OnNextModal(answer);
        box->accept();
    };
    GuiDriver::OnNextModal(answer);
    GuiDriver::Action(&window, "Validate Entire Model")->trigger();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0], "succeed: Validate Succeed");
    EXPECT_EQ(boxes[1], "Warning: The parameter \"Creation options\" of \"Convert raster\" is refused: "
                        "'NOPE' is an unexpected value for COMPRESS creation option of type string-select.");
}
