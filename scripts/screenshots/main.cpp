// Draws the pictures of the README: real windows of the editor on the shipped
// examples, captured as a person sees them. Run under a display (xvfb-run):
//   make screenshots        (writes docs/*.png)
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/RunCmdDlg.h"
#include "editor/GraphicsItemBase.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/RecoveryCopy.h"
#include "model/APCModel.h"
#include "model/APCObject.h"
#include "model/APCParameter.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBTreeWidget.h"
#include "support/CanvasDriver.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsItem>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace {

QString g_out;

// Saves what the screen shows inside the window's frame: dialogs over it included.
void shoot(QWidget* window, const QString& name)
{
    QApplication::processEvents();
    const QRect frame = window->frameGeometry();
    const QPixmap picture = window->screen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height());
    const QString path = QDir(g_out).filePath(name);
    std::printf("%s: %s\n", qPrintable(path), picture.save(path) ? "written" : "FAILED");
    std::fflush(stdout);
}

// Calls act with the next modal window, from inside its own event loop.
void onNextModal(const std::function<void(QWidget*)>& act)
{
    QWidget* before = QApplication::activeModalWidget();
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [=] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || modal == before)
            return;
        timer->stop();
        timer->deleteLater();
        QTimer::singleShot(300, modal, [=] { act(modal); });
    });
    timer->start(20);
}

QAction* actionOf(QWidget* window, const QString& text)
{
    for (QAction* a : window->findChildren<QAction*>())
        if (a->text() == text)
            return a;
    return nullptr;
}

QGraphicsItem* firstItemOf(Plugin::ModelControler& window, const QString& className)
{
    for (QGraphicsItem* item : window.GetView()->scene()->items())
        if (auto* base = dynamic_cast<Plugin::GraphicsItemBase*>(item))
            if (base->GetObject() && base->GetObject()->GetClass() == className)
                return item;
    return nullptr;
}

Plugin::ModelControler* openModel(const QString& file)
{
    auto* window = new Plugin::ModelControler(QApplication::applicationDirPath() + "/../Model/apc/" + file, false);
    window->SetModelName(QFileInfo(file).baseName());
    window->setGeometry(40, 40, 1100, 720);
    window->show();
    QApplication::processEvents();
    // Fit once the window has its final size; the docks settle after the show.
    QTimer::singleShot(100, window, [window] {
        if (QAction* full = actionOf(window, "Full Extent"))
            full->trigger();
    });
    return window;
}

void openAlgorithmDialog(Plugin::ModelControler* window);
void doubleClick(Plugin::ModelControler* window, QGraphicsItem* item);

void runDialog()
{
    Plugin::ModelControler* window = openModel("scene_ndvi.apc");
    QTimer::singleShot(400, window, [window] { actionOf(window, "Run")->trigger(); });
    onNextModal([window](QWidget* modal) {
        // The user has picked the output folder on the second tab.
        if (auto* tabs = modal->findChild<QTabWidget*>()) {
            tabs->setCurrentIndex(1);
            if (auto* edit = tabs->currentWidget()->findChild<QLineEdit*>())
                edit->setText(QDir::homePath() + "/ndvi");
        }
        shoot(window, "run-dialog.png");
        modal->close();
        QTimer::singleShot(100, [window] { window->close(); });
    });
}

void algorithmDialog()
{
    Plugin::ModelControler* window = openModel("scene_ndvi.apc");
    QTimer::singleShot(400, window, [window] { openAlgorithmDialog(window); });
}

// Sends the press, release and double click a user's double click makes.
void doubleClick(Plugin::ModelControler* window, QGraphicsItem* item)
{
    QGraphicsView* view = window->GetView();
    view->centerOn(item);
    const QPoint at = view->mapFromScene(item->sceneBoundingRect().center());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

void functionDialog()
{
    Plugin::ModelControler* window = openModel("scene_ndvi.apc");
    QTimer::singleShot(400, window, [window] {
        QGraphicsItem* computed = nullptr;
        for (QGraphicsItem* item : window->GetView()->scene()->items())
            if (auto* base = dynamic_cast<Plugin::GraphicsItemBase*>(item))
                if (auto* var = dynamic_cast<Plugin::APCVar*>(base->GetObject()); var && !var->GetFunExp().isEmpty())
                    computed = item;
        if (!computed) {
            std::printf("function-dialog: no computed var on the canvas\n");
            return;
        }
        onNextModal([window](QWidget* varDialog) {
            onNextModal([window, varDialog](QWidget* functions) {
                shoot(window, "function-dialog.png");
                functions->close();
                QTimer::singleShot(100, [varDialog] { varDialog->close(); });
            });
            if (auto* dots = varDialog->findChild<QAbstractButton*>("funcButton"))
                dots->click();
        });
        doubleClick(window, computed);
        window->close();
    });
}

void openAlgorithmDialog(Plugin::ModelControler* window)
{
    QGraphicsItem* item = firstItemOf(*window, "algo");
    if (!item) {
        std::printf("algorithm-dialog: no algorithm step on the canvas\n");
        return;
    }
    onNextModal([window](QWidget* modal) {
        shoot(window, "algorithm-dialog.png");
        modal->close();
    });
    doubleClick(window, item);
    window->close();
}

// A model built with the mouse's own path (tools dropped from the tool box onto
// an empty canvas, the hillshade's output fed to the slope), caught while it runs.
void builtModelMidRun()
{
    const QString dem = QDir(g_out).filePath("../build/dem-large.tif");
    if (!QFileInfo::exists(dem)) {
        std::printf("mid-run: %s missing (make screenshots makes it)\n", qPrintable(dem));
        return;
    }
    const QString path = QDir::temp().filePath("built-model.apc");
    QFile::remove(path);
    auto* window = new Plugin::ModelControler(path, false);
    window->SetModelName("Terrain");
    window->setGeometry(40, 40, 1100, 720);
    window->show();
    static Plugin::ATBTreeWidget tree;
    static Plugin::ATBAlgo hillshade, slope;
    hillshade.SetName("Hillshade");
    hillshade.SetMetadata("raster.hillshade");
    slope.SetName("Slope");
    slope.SetMetadata("raster.slope");
    CanvasDriver::DropOnCanvas(&tree, &hillshade, *window, QPointF(0, 0));
    CanvasDriver::DropOnCanvas(&tree, &slope, *window, QPointF(0, 300));
    Plugin::APCModel* model = window->GetDocument();
    auto* first = model->GetProcesses().at(0);
    auto* second = model->GetProcesses().at(1);
    auto varOf = [model](Plugin::APCProcess* step, const char* param) {
        return model->FindVar(QString(step->GetParameter(param).value).remove('%'));
    };
    varOf(first, "In File")->SetDescription("Elevation");
    varOf(first, "In File")->SetConstant(true);
    varOf(first, "In File")->SetValue(dem);
    varOf(first, "Out File")->SetDescription("Relief");
    varOf(first, "Out File")->SetConstant(true);
    varOf(first, "Out File")->SetValue(QDir::temp().filePath("relief.tif"));
    // The slope reads the relief: its own input var gives way to the hillshade's output.
    model->RemoveVar(varOf(second, "In File"));
    for (Plugin::APCParameter& p : second->GetParameters())
        if (p.name == "In File")
            p.value = first->GetParameter("Out File").value;
    model->UpdateProcess(second);
    varOf(second, "Out File")->SetDescription("Slope of the relief");
    varOf(second, "Out File")->SetConstant(true);
    varOf(second, "Out File")->SetValue(QDir::temp().filePath("slope.tif"));
    QTimer::singleShot(300, window, [window] {
        actionOf(window, "Run")->trigger();
        // The log opens with the run: fit the model into what is left of the view.
        QTimer::singleShot(100, window, [window] {
            if (QAction* full = actionOf(window, "Full Extent"))
                full->trigger();
        });
        QTimer::singleShot(350, window, [window] { shoot(window, "built-model-running.png"); });
    });
}

// The NDVI example after Auto Layout, at 1:1.
void laidOutExample()
{
    Plugin::ModelControler* window = openModel("scene_ndvi.apc");
    window->resize(1100, 340);
    QTimer::singleShot(300, window, [window] {
        actionOf(window, "Auto Layout")->trigger();
        actionOf(window, "1:1")->trigger();
        window->GetView()->centerOn(window->GetScene()->itemsBoundingRect().center());
        QTimer::singleShot(300, window, [window] {
            shoot(window, "auto-layout.png");
            window->SetModified(false); // the shipped copy stays as it was
            window->close();
        });
    });
}

// The Edit menu open after a delete, naming the step Undo takes back.
void editMenu()
{
    Plugin::ModelControler* window = openModel("scene_ndvi.apc");
    window->resize(900, 520);
    QTimer::singleShot(300, window, [window] {
        if (QGraphicsItem* var = firstItemOf(*window, "file"))
            var->setSelected(true);
        actionOf(window, "Delete")->trigger();
        for (QAction* entry : window->menuBar()->actions()) {
            if (entry->text() != "Edit" || !entry->menu())
                continue;
            QMenu* menu = entry->menu();
            menu->popup(window->menuBar()->mapToGlobal(window->menuBar()->actionGeometry(entry).bottomLeft()));
            QTimer::singleShot(400, window, [window, menu] {
                shoot(window, "edit-menu.png");
                menu->close();
                window->SetModified(false); // the shipped copy stays as it was
                window->close();
            });
        }
    });
}

// The question a model meets when an earlier window left changes it never saved:
// here a description changed, as a crash would have left it.
void recoverChanges()
{
    const QString path = QApplication::applicationDirPath() + "/../Model/apc/scene_ndvi.apc";
    Plugin::APCModel left;
    left.LoadFile(path);
    if (!left.GetVars().isEmpty())
        left.GetVars().first()->SetDescription("Scenes of June");
    QDir().mkpath(Plugin::RecoveryCopy::Folder());
    left.SaveFile(Plugin::RecoveryCopy::PathFor(path));
    onNextModal([](QWidget* modal) {
        shoot(modal, "recover-changes.png");
        if (auto* box = qobject_cast<QMessageBox*>(modal))
            box->button(QMessageBox::No)->click(); // the shipped copy stays as it was
    });
    QTimer::singleShot(0, [] { openModel("scene_ndvi.apc")->close(); });
}

} // namespace

int main(int argc, char** argv)
{
    // The copies of changed models the windows keep stay with this run.
    const QTemporaryDir userData;
    qputenv("XDG_DATA_HOME", userData.path().toLocal8Bit());
    QApplication app(argc, argv);
    app.setQuitOnLastWindowClosed(false); // one window closes before the next opens
    g_out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs");
    QDir().mkpath(g_out);
    const QStringList wanted = app.arguments().mid(2);
    const std::vector<std::pair<QString, std::function<void()>>> shots = {
        {"run-dialog", runDialog},
        {"algorithm-dialog", algorithmDialog},
        {"function-dialog", functionDialog},
        {"built-model-running", builtModelMidRun},
        {"auto-layout", laidOutExample},
        {"edit-menu", editMenu},
        {"recover-changes", recoverChanges},
    };
    int delay = 200;
    for (const auto& shot : shots) {
        if (!wanted.isEmpty() && !wanted.contains(shot.first))
            continue;
        QTimer::singleShot(delay, shot.second);
        delay += 2500;
    }
    QTimer::singleShot(delay, &app, &QApplication::quit);
    return app.exec();
}
