// The tool box: its file read and written (and the one that ships), the panel,
// its menus and double clicks, driven as a user drives them: right click on a
// row, pick an entry, answer the dialogs; then the host shuts down and the tool
// box file is looked at. The plug-in module the host loads. And the Simplified
// Chinese translation: every text of translations/ModelBuilder_zh_CN.ts is
// translated in the compiled file the host loads, keeps what the code relies on,
// and is found under the contexts the widgets ask for; the desktop host picks
// the language from its option or the system's locale and keeps its window
// between runs.
#include "HostCatalog/AlgorithmRegistry.h"
#include "HostCatalog/Metadata.h"
#include "HostCatalogGui/AlgoInfo.h"
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "HostCore/_ptr_t.h"
#include "HostDesktop/IApplication.h"
#include "HostShell/EnvironmentSetting.h"
#include "HostTask/IHostTask.h"
#include "dialogs/APCArrowDlg.h"
#include "editor/ModelCommandManager.h"
#include "editor/ModelControler.h"
#include "editor/ModelScene.h"
#include "editor/ModelView.h"
#include "editor/RecoveryCopy.h"
#include "engine/APCLog.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/Gb2312.h"
#include "plugin/PythonCommand.h"
#include "plugin/ToolBoxPlugin.h"
#include "support/GuiDriver.h"
#include "support/ModelFixtures.h"
#include "support/TestSupport.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBCreateCircuitDlg.h"
#include "toolbox/ATBFolder.h"
#include "toolbox/ATBGroup.h"
#include "toolbox/ATBIterator.h"
#include "toolbox/ATBPython.h"
#include "toolbox/ATBTreeWidget.h"
#include "toolbox/ToolBoxCommand.h"
#include "toolbox/ToolBoxWidget.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QKeySequence>
#include <QLabel>
#include <QLibrary>
#include <QLineEdit>
#include <QMainWindow>
#include <QMap>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QMouseEvent>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>
#include <QTranslator>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <typeinfo>
#include <vector>

using namespace Plugin;
using TestSupport::ReadAll;
using TestSupport::WriteAll;

namespace {

// Owns what a file gives, as the tool box panel would.
struct Loaded
{
    ATBConfigFile file;
    bool ok = false;
    explicit Loaded(const QString& path) { ok = file.Load(path); }
    ~Loaded() { qDeleteAll(file.GetItems()); }
    QList<ATBItem*>& items() { return file.GetItems(); }
};

// item as a T; the test stops when it is none.
template <class T>
T* as(ATBItem* item)
{
    auto* cast = dynamic_cast<T*>(item);
    if (!cast)
        throw std::runtime_error(std::string("not a ") + typeid(T).name());
    return cast;
}

QByteArray gb2312(const QString& text) { return Gb2312::Codec()->fromUnicode(text); }

const QString kEveryKind = QStringLiteral(R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <ToolBox name="ToolBox">
        <Group name="栅格工具">
            <Algo name="Slope" metadata="raster.slope" description="Slope in degrees"/>
            <Iterator name="Raster files" class="RasterFileIterator" description="Every raster of a folder"/>
            <Folder name="My tools" canDelete="1">
                <APC name="NDVI" readOnly="1" file="Model/apc/ndvi.apc" description="Index &amp; more"/>
                <Folder name="Nested">
                    <Python name="Clean" file="Python/clean.py" description=""/>
                </Folder>
            </Folder>
        </Group>
    </ToolBox>
</Configuration>
)");

const QByteArray kToolBox = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <ToolBox name="ToolBox">
        <Group name="Models">
            <Folder name="Mine" canDelete="1">
                <APC name="First" file="Model/apc/first.apc" description="one"/>
                <APC name="Second" file="Model/apc/second.apc" description=""/>
                <APC name="Locked" readOnly="1" file="Model/apc/locked.apc" description=""/>
            </Folder>
            <Folder name="Shipped"/>
        </Group>
    </ToolBox>
</Configuration>
)";

// A model of do-nothing steps at the given places.
QByteArray Steps(const QList<QPoint>& places)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"GB2312\"?>\n<Configuration><Processes>";
    for (const QPoint& p : places)
        xml += QString(R"(<Process class="algo" name="{%1}" posX="%2" posY="%3" painter="" processName="test.noop"/>)")
                   .arg(p.x() + p.y()).arg(p.x()).arg(p.y()).toLatin1();
    return xml + "</Processes><Vars/><Arrows/></Configuration>\n";
}
const QByteArray kWide = Steps({{0, 0}, {2400, 900}}); // too wide for 1:1 in 800 by 500
const QByteArray kSmall = Steps({{0, 0}});

// Answers the next file dialog with path, typed into its name field.
void PickFile(const QString& path)
{
    GuiDriver::OnNextModal([=](QWidget* dialog) { GuiDriver::PickPath(dialog, path); });
}

struct Message
{
    QString context;
    QString source;
    QString translation;
    QString type; // "unfinished", "vanished", "obsolete", or empty when finished
};

std::vector<Message> ReadTs(const QString& path)
{
    std::vector<Message> messages;
    QFile file(path);
    QDomDocument doc;
    if (!file.open(QIODevice::ReadOnly) || !doc.setContent(&file))
        return messages;
    for (QDomElement c = doc.documentElement().firstChildElement("context"); !c.isNull();
         c = c.nextSiblingElement("context")) {
        const QString context = c.firstChildElement("name").text();
        for (QDomElement m = c.firstChildElement("message"); !m.isNull(); m = m.nextSiblingElement("message")) {
            const QDomElement t = m.firstChildElement("translation");
            messages.push_back({context, m.firstChildElement("source").text(), t.text(), t.attribute("type")});
        }
    }
    return messages;
}

QString TsPath() { return QStringLiteral(MB_SOURCE_DIR "/translations/ModelBuilder_zh_CN.ts"); }
QString QmPath() { return QCoreApplication::applicationDirPath() + "/../translations/ModelBuilder_zh_CN.qm"; }

// The placeholders %1..%9 a text uses: a translation may move or repeat them, not
// lose or add one.
QStringList Placeholders(const QString& text)
{
    QStringList found;
    auto it = QRegularExpression(QStringLiteral("%[1-9]")).globalMatch(text);
    while (it.hasNext())
        found << it.next().captured();
    found.sort();
    found.removeDuplicates();
    return found;
}

// The blank and punctuation a text ends with: code appends values after them.
QString Ending(const QString& text)
{
    return QRegularExpression(QStringLiteral("[\\s:.!?]*$")).match(text).captured();
}

QString Leading(const QString& text) { return QRegularExpression(QStringLiteral("^\\s*")).match(text).captured(); }

// The desktop host program beside the tests; empty when it is not built.
QString HostProgram()
{
    const QString program = QCoreApplication::applicationDirPath() + "/modelbuilder";
    return QFileInfo(program).isExecutable() ? program : QString();
}

// Runs the host with a private configuration and the system locale locale; what
// it printed, or "failed: " and its errors when it did not end well.
QString RunHost(const QString& configHome, const QStringList& arguments, const QByteArray& locale = "C")
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", configHome);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("LC_ALL", locale);
    host.setProcessEnvironment(environment);
    host.start(HostProgram(), arguments);
    if (!host.waitForFinished(60000) || host.exitStatus() != QProcess::NormalExit || host.exitCode() != 0)
        return QStringLiteral("failed: ") + QString::fromLocal8Bit(host.readAllStandardError());
    return QString::fromUtf8(host.readAllStandardOutput());
}

} // namespace

class ToolBoxFile : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString path(const QString& name) const { return dir.filePath(name); }
};

// The kinds made and what is derived; the attributes show in the round trip.
TEST_F(ToolBoxFile, ReadsEveryKindDerivesTheAlgorithmsFileAndWritesTheSameText)
{
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(dir.path() + "/bin");
    ASSERT_TRUE(WriteAll(path("t.atb"), gb2312(kEveryKind)));
    Loaded loaded(path("t.atb"));
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
    ASSERT_TRUE(loaded.ok);
    ASSERT_EQ(loaded.items().size(), 1);
    auto* group = as<ATBGroup>(loaded.items()[0]);
    ASSERT_EQ(group->GetChildren().size(), 3);
    // Made from the metadata, never read from the file, kept absolute.
    EXPECT_EQ(as<ATBAlgo>(group->GetChildren()[0])->GetFile(), dir.path() + "/bin/../Model/abd/raster.slope.atb");
    EXPECT_EQ(as<ATBIterator>(group->GetChildren()[1])->GetType(), ATB_Iterator);
    auto* folder = as<ATBFolder>(group->GetChildren()[2]);
    EXPECT_EQ(as<ATBAlgoDepend>(folder->GetChildren()[0])->GetDescription(), "Index & more");
    auto* script = as<ATBPython>(as<ATBFolder>(folder->GetChildren()[1])->GetChildren()[0]);
    EXPECT_TRUE(script->IsValid());
    ASSERT_TRUE(loaded.file.Save(path("again.atb")));
    EXPECT_EQ(ReadAll(path("again.atb")), gb2312(kEveryKind));

    // A name beyond the file's encoding comes back whole.
    group->SetName(QStringLiteral("河流 🌊 Ærø"));
    ASSERT_TRUE(loaded.file.Save(path("beyond.atb")));
    Loaded beyond(path("beyond.atb"));
    ASSERT_TRUE(beyond.ok && !beyond.items().isEmpty());
    EXPECT_EQ(beyond.items()[0]->GetName(), QStringLiteral("河流 🌊 Ærø"));
}

TEST_F(ToolBoxFile, KeepsOnlyWhatTheFormatHolds)
{
    // Comments, unknown elements (with all below them), children of leaf items and
    // flags other than "1" do not survive a round trip; a second ToolBox merges.
    const QString text = QStringLiteral(R"(<?xml version="1.0" encoding="GB2312"?>
<Configuration>
  <!-- a comment -->
  <ToolBox name="ignored">
    <Folder name="A" canDelete="true"><Unknown><Group name="lost"/></Unknown></Folder>
    <APC name="M" readOnly="yes" file="Model/apc/m.apc"><Group name="lost too"/></APC>
  </ToolBox>
  <Other><ToolBox name="not at the top"/></Other>
  <ToolBox><Group name="B"/></ToolBox>
</Configuration>
)");
    ASSERT_TRUE(WriteAll(path("t.atb"), gb2312(text)));
    Loaded loaded(path("t.atb"));
    ASSERT_TRUE(loaded.ok);
    ASSERT_TRUE(loaded.file.Save(path("out.atb")));
    const QString expected = QStringLiteral(R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <ToolBox name="ToolBox">
        <Folder name="A"/>
        <APC name="M" file="Model/apc/m.apc" description=""/>
        <Group name="B"/>
    </ToolBox>
</Configuration>
)");
    EXPECT_EQ(Gb2312::Codec()->toUnicode(ReadAll(path("out.atb"))), expected);
}

TEST_F(ToolBoxFile, BadFilesLeaveTheListAlone)
{
    struct Case
    {
        const char* what;
        QByteArray bytes; // empty: no file at all
        bool ok;
        int items;
    };
    const QList<Case> cases = {
        {"missing file", QByteArray(), false, 1},
        {"not XML", "<Configuration><ToolBox>", false, 1},
        {"other root", "<ToolBox><Group name='x'/></ToolBox>", false, 1},
        {"no tool box", "<Configuration/>", true, 1},
        {"one more", "<Configuration><ToolBox><Algo name='a'/></ToolBox></Configuration>", true, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString file = path(QString("case-%1.atb").arg(c.what));
        if (!c.bytes.isEmpty()) {
            ASSERT_TRUE(WriteAll(file, c.bytes));
        }
        ATBConfigFile config;
        config.GetItems().append(new ATBGroup); // loading appends to what is there
        EXPECT_EQ(config.Load(file), c.ok);
        EXPECT_EQ(config.GetItems().size(), c.items);
        qDeleteAll(config.GetItems());
    }
}

TEST(ToolBoxItems, PythonScriptsOpenInTheInstallationsEditor)
{
    QTemporaryDir root;
    ASSERT_TRUE(QDir(root.path()).mkpath("bin"));
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(root.path() + "/bin");
    ATBPython script;
    script.SetFile("Python/clean.py");
    QString program;
    QStringList arguments;

    script.EditorCommand(program, arguments);
    EXPECT_EQ(program, "python3");
    EXPECT_EQ(arguments, QStringList({"-m", "idlelib", root.path() + "/bin/../Python/clean.py"}));

    ASSERT_TRUE(QDir(root.path()).mkpath("Python"));
    ASSERT_TRUE(WriteAll(root.filePath("Python/python.exe"), "MZ"));
    script.EditorCommand(program, arguments);
    EXPECT_EQ(program, root.path() + "/bin/../Python/python.exe");
    EXPECT_EQ(arguments, QStringList({root.path() + "/bin/../Python/Lib/idlelib/idle.pyw",
                                      root.path() + "/bin/../Python/clean.py"}));
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
}

// The tool box that ships must name only what exists: algorithms of the
// catalogue, iterator kinds the factory makes, and the example models.
TEST(ShippedToolBox, NamesOnlyWhatExists)
{
    const QString source = QStringLiteral(MB_SOURCE_DIR);
    Loaded loaded(source + "/examples/ToolBox.atb");
    ASSERT_TRUE(loaded.ok);
    int algorithms = 0;
    int models = 0;
    std::function<void(const QList<ATBItem*>&)> visit = [&](const QList<ATBItem*>& items) {
        for (ATBItem* item : items) {
            if (auto* container = dynamic_cast<ATBContainer*>(item))
                visit(container->GetChildren());
            if (auto* algo = dynamic_cast<ATBAlgo*>(item)) {
                ++algorithms;
                EXPECT_TRUE(Metadata::Instance(QString())->GetConfig(algo->GetMetadata())) << qPrintable(algo->GetMetadata());
            }
            if (auto* iterator = dynamic_cast<ATBIterator*>(item)) {
                std::unique_ptr<APCProcess> made(APCProcessFactory::Instance()->Create(iterator->GetClass()));
                EXPECT_TRUE(made) << qPrintable(iterator->GetClass());
            }
            if (auto* model = dynamic_cast<ATBAlgoDepend*>(item)) {
                ++models;
                const QString name = QFileInfo(model->GetFile()).fileName();
                EXPECT_EQ(model->GetFile(), "Model/apc/" + name);
                EXPECT_TRUE(QFileInfo::exists(source + "/examples/" + name)) << qPrintable(name);
            }
        }
    };
    visit(loaded.items());
    const QStringList all = AlgorithmRegistry::Instance().Names(); // and the tests' own
    EXPECT_EQ(algorithms, all.size() - all.filter(QRegularExpression("^test\\.")).size());
    EXPECT_GT(models, 0);

    QTemporaryDir dir;
    ASSERT_TRUE(loaded.file.Save(dir.filePath("again.atb")));
    EXPECT_EQ(ReadAll(dir.filePath("again.atb")), ReadAll(source + "/examples/ToolBox.atb"));
}

// ---------------------------------------------------------------------------
// The panel

// An installation in a temporary folder, its tool box open in a shown window.
class ToolBoxActions : public ::testing::Test, public HostDesktop::IApplication
{
protected:
    QMainWindow* GetMainWindow() override { return &window; }
    void SetUp() override
    {
        for (const char* folder : {"bin", "Model/atb", "Model/apc", "elsewhere"})
            ASSERT_TRUE(QDir(root.path()).mkpath(folder));
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(root.path() + "/bin");
        ASSERT_TRUE(WriteAll(atb(), kToolBox));
        ASSERT_TRUE(WriteAll(apc("first"), kWide) && WriteAll(apc("second"), kWide) && WriteAll(apc("locked"), kSmall));
        Reopen();
        window.resize(1000, 700);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    void TearDown() override
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (qobject_cast<ModelControler*>(window))
                window->close();
        manager->OnUpdateState();
        command = nullptr;
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
    }

    // A command as the host makes it, opened once.
    void Reopen()
    {
        command = new ToolBoxCommand;
        command->OnCreate(static_cast<HostDesktop::IApplication*>(this));
        command->OnClick();
    }
    QString atb() const { return root.filePath("Model/atb/ToolBox.atb"); }
    QString apc(const QString& name) const { return root.filePath("Model/apc/" + name + ".apc"); }
    ToolBoxWidget* toolBox() const { return static_cast<ToolBoxCommand*>(command.get())->GetToolBox(); }
    ATBTreeWidget* tree() const { return toolBox()->GetTree(); }
    // The tool box file as the host leaves it at shutdown.
    QString Shutdown()
    {
        command = nullptr;
        return QString::fromLatin1(ReadAll(atb()));
    }

    // The row named name (names are unique here), scrolled into view.
    QTreeWidgetItem* Row(const QString& name) const
    {
        tree()->expandAll();
        QTreeWidgetItem* row = tree()->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
        tree()->scrollToItem(row);
        return row;
    }
    QStringList Children(const QString& name) const
    {
        QStringList names;
        for (int i = 0; Row(name) && i < Row(name)->childCount(); ++i)
            names << Row(name)->child(i)->text(0);
        return names;
    }
    // A right click on the row; inMenu is set up to act inside the menu.
    void RightClick(const QString& name, const std::function<void()>& inMenu)
    {
        QTreeWidgetItem* row = Row(name);
        ASSERT_TRUE(row) << name.toStdString();
        const QPoint at = tree()->visualItemRect(row).center();
        QTest::mouseClick(tree()->viewport(), Qt::RightButton, {}, at);
        inMenu();
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, tree()->viewport()->mapToGlobal(at));
        QApplication::sendEvent(tree()->viewport(), &event);
    }
    void Menu(const QString& name, const QStringList& entries)
    {
        RightClick(name, [&] { GuiDriver::ChooseInMenu(entries); });
    }
    // The entries of a row's menu, "(off)" marking the disabled ones.
    QStringList Entries(const QString& name)
    {
        QStringList texts;
        RightClick(name, [&] {
            GuiDriver::OnNextPopup(nullptr, [&](QMenu* menu) {
                for (QAction* action : menu->actions())
                    texts << action->text() + (action->isEnabled() ? "" : " (off)");
                menu->close();
            });
        });
        return texts;
    }
    ModelControler* DoubleClick(const QString& name)
    {
        const QPoint at = tree()->visualItemRect(Row(name)).center();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(tree()->viewport(), Qt::LeftButton, {}, at);
        return manager->FindWindow(root.path() + "/bin/../Model/apc/" + name.toLower() + ".apc");
    }

    QTemporaryDir root;
    QMainWindow window;
    HostCore::_ptr_t<HostShell::ICommand> command{new ToolBoxCommand};
    ModelCommandManager* manager = ModelCommandManager::Instance();
};

// New ToolSet refuses an empty name and makes a deletable folder; New Model refuses
// empty and taken names, then writes the model without opening it; Edit renames.
TEST_F(ToolBoxActions, NewToolSetNewModelAndEditRefuseBadNamesAndMakeOrRenameTheirItems)
{
    GuiDriver::OnNextModal([&](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), "ToolSet");
        GuiDriver::ExpectMessage("Error", "Name can not be empty");
        GuiDriver::Click(dialog, "OK");
        GuiDriver::TypeInto(dialog, "nameEdit", "Sub");
        GuiDriver::Click(dialog, "OK");
    });
    Menu("Mine", {"New", "ToolSet"});
    EXPECT_EQ(Children("Models"), QStringList({"Shipped", "Mine"})); // a changed folder goes last
    EXPECT_EQ(Children("Mine"), QStringList({"First", "Second", "Locked", "Sub"}));
    EXPECT_EQ(Entries("Sub"), QStringList({"New", "Delete", "Import Model"}));

    GuiDriver::OnNextModal([&](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), "CreateCircuit");
        GuiDriver::ExpectMessage("Error", "Name is null!");
        GuiDriver::Click(dialog, "OK");
        GuiDriver::TypeInto(dialog, "nameEdit", "second");
        GuiDriver::ExpectMessage("Error", "File is existing!");
        GuiDriver::Click(dialog, "OK");
        GuiDriver::Retype(dialog->findChild<QLineEdit*>("nameEdit"), "Fresh");
        GuiDriver::TypeInto(dialog, "descriptionEdit", "made here");
        GuiDriver::Click(dialog, "OK");
    });
    const int windows = manager->WindowCount();
    Menu("Mine", {"New", "Model"});
    EXPECT_EQ(Children("Mine"), QStringList({"First", "Second", "Locked", "Sub", "Fresh"}));
    EXPECT_TRUE(APCModel().LoadFile(apc("Fresh")));
    // No window opens, so nothing locks the menus.
    EXPECT_EQ(manager->WindowCount(), windows);
    EXPECT_FALSE(manager->FindWindow(root.path() + "/bin/../Model/apc/Fresh.apc"));
    manager->OnUpdateState();
    EXPECT_EQ(Entries("Fresh"), QStringList({"Remove", "Edit", "Export"}));

    // Edit renames the file, or refuses a taken name.
    GuiDriver::OnNextModal([&](QWidget* dialog) {
        EXPECT_EQ(dialog->findChild<QLineEdit*>("nameEdit")->text(), "First");
        EXPECT_EQ(dialog->findChild<QLineEdit*>("descriptionEdit")->text(), "one");
        GuiDriver::Retype(dialog->findChild<QLineEdit*>("nameEdit"), "locked.apc");
        GuiDriver::ExpectMessage("Error", "File is existing!");
        GuiDriver::Click(dialog, "OK");
        GuiDriver::Retype(dialog->findChild<QLineEdit*>("nameEdit"), "Renamed");
        GuiDriver::Click(dialog, "OK");
    });
    Menu("First", {"Edit"});
    EXPECT_FALSE(QFileInfo::exists(apc("first")));
    EXPECT_EQ(ReadAll(apc("Renamed")), kWide);
    EXPECT_EQ(ReadAll(apc("locked")), kSmall);
    EXPECT_EQ(Children("Mine"), QStringList({"Second", "Locked", "Sub", "Fresh", "Renamed"}));

    GuiDriver::OnNextModal([&](QWidget* dialog) { GuiDriver::Click(dialog, "Cancel"); });
    Menu("Second", {"Edit"});
    EXPECT_EQ(Children("Mine"), QStringList({"Second", "Locked", "Sub", "Fresh", "Renamed"}));
    const QString text = Shutdown(); // in the order of the tree
    EXPECT_TRUE(text.contains(R"(<Folder name="Sub" canDelete="1"/>)"));
    EXPECT_TRUE(text.contains(R"(<APC name="Fresh" file="Model/apc/Fresh.apc" description="made here"/>)"));
    EXPECT_TRUE(text.contains(R"(<APC name="Renamed" file="Model/apc/Renamed.apc" description="one"/>)"));
    EXPECT_LT(text.indexOf(R"("Second")"), text.indexOf("Renamed"));
}

// A changed tree is copied aside; when the file cannot take it at the end, the
// copy is offered at the next first click.
TEST_F(ToolBoxActions, ATreeItsFileCouldNotTakeComesBackAtTheNextOpen)
{
    const QString copy = RecoveryCopy::PathFor(atb());
    const QByteArray before = ReadAll(atb());
    GuiDriver::OnNextModal([&](QWidget* dialog) {
        GuiDriver::Retype(dialog->findChild<QLineEdit*>("nameEdit"), "Renamed");
        GuiDriver::Click(dialog, "OK");
    });
    Menu("First", {"Edit"});
    EXPECT_EQ(Children("Mine"), QStringList({"Second", "Locked", "Renamed"}));
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return QFile::exists(copy); }, 5000));
    // Copying leaves the lists alone: a folder's row is still rebuilt in its list's order.
    GuiDriver::OnNextModal([&](QWidget* dialog) {
        GuiDriver::TypeInto(dialog, "nameEdit", "Sub");
        GuiDriver::Click(dialog, "OK");
    });
    Menu("Mine", {"New", "ToolSet"});
    EXPECT_EQ(Children("Mine"), QStringList({"Renamed", "Second", "Locked", "Sub"}));
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return ReadAll(copy).contains("Sub"); }, 5000));
    {
        const TestSupport::FileSizeLimit full(before.size() / 2);
        command = nullptr; // the host ends on a full disk
    }
    EXPECT_EQ(ReadAll(atb()), before);
    GuiDriver::OnNextModal([&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Recover changes");
        EXPECT_TRUE(box->text().startsWith("Changes to the tool box made up to ")) << box->text().toStdString();
        QTest::mouseClick(box->defaultButton(), Qt::LeftButton);
    });
    Reopen();
    EXPECT_EQ(Children("Mine"), QStringList({"Renamed", "Second", "Locked", "Sub"}));
    EXPECT_TRUE(Shutdown().contains(R"(<Folder name="Sub" canDelete="1"/>)"));
    EXPECT_FALSE(QFile::exists(copy)); // the file has it all now
}

TEST_F(ToolBoxActions, ImportCopiesUnderAFreeName)
{
    struct Case
    {
        const char* name;
        QString source;      // in "elsewhere"
        QStringList present; // in Model/apc beforehand
        QString row;         // the item's name and description
        QString file;        // its file
    };
    const Case cases[] = {
        {"clash twice", "a.apc", {"a.apc", "a(1).apc"}, "a(2)", "Model/apc/a(2).apc"},
        {"cut at the first point", "x.y.apc", {"x.y.apc"}, "x(1)", "Model/apc/x(1).apc"},
        {"no clash keeps the extension", "m.txt", {}, "m", "Model/apc/m.txt"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const QString& present : c.present)
            ASSERT_TRUE(WriteAll(root.filePath("Model/apc/" + present), "taken"));
        ASSERT_TRUE(WriteAll(root.filePath("elsewhere/" + c.source), kWide));
        PickFile(root.filePath("elsewhere/" + c.source));
        Menu("Shipped", {"Import Model"});
        EXPECT_EQ(ReadAll(root.filePath(c.file)), kWide);
        auto* item = dynamic_cast<ATBAlgoDepend*>(ToolBoxWidget::ItemOf(Row(c.row)));
        ASSERT_TRUE(item);
        EXPECT_EQ(item->GetFile(), c.file);
        EXPECT_EQ(item->GetDescription(), c.row);
    }
}

TEST_F(ToolBoxActions, DoubleClickOpensOneWindowAtOneToOneTheMenusLockWhileAnyIsOpenAndNoDragFromEmptySpace)
{
    const QStringList unlocked = {"Remove", "Edit", "Export"}, unlockedFolder = {"New", "Delete", "Import Model"};
    const int before = manager->WindowCount();
    manager->OnUpdateState();
    ModelControler* window = DoubleClick("First");
    ASSERT_TRUE(window);
    // The entries show what the last tick left: until the next one the menus
    // are as they were before the window opened.
    manager->StartTimer(3600 * 1000);
    EXPECT_EQ(Entries("Second"), unlocked);
    EXPECT_EQ(Entries("Mine"), unlockedFolder);
    manager->OnUpdateState();
    EXPECT_EQ(Entries("Second"), QStringList({"Remove (off)", "Edit (off)", "Export"}));
    EXPECT_EQ(Entries("Mine"), QStringList({"New", "Delete (off)", "Import Model"}));

    EXPECT_EQ(DoubleClick("First"), window);
    EXPECT_EQ(manager->WindowCount(), before + 1);
    EXPECT_EQ(window->windowTitle(), "Model Builder-First");
    QCoreApplication::processEvents();
    // A model wider than the window still opens unscaled: only the zoom commands
    // and tools change the scale.
    EXPECT_DOUBLE_EQ(window->GetView()->transform().m11(), 1.0);
    EXPECT_DOUBLE_EQ(window->GetScene()->GetScale(), 1.0);
    ModelControler* small = DoubleClick("Locked");
    ASSERT_TRUE(small);
    EXPECT_TRUE(small->IsReadOnly());
    EXPECT_DOUBLE_EQ(small->GetView()->transform().m11(), 1.0);

    manager->StartTimer(500);
    window->close();
    small->close();
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return manager->WindowCount() == before; })); // the timer's tick
    EXPECT_EQ(Entries("Second"), unlocked);
    EXPECT_EQ(Entries("Mine"), unlockedFolder);

    // Pressing on empty space and moving starts no drag; a changed tree on a full
    // disk keeps the old file whole.
    tree()->setCurrentItem(tree()->topLevelItem(0));
    QWidget* viewport = tree()->viewport();
    const QPoint empty(viewport->width() / 2, viewport->height() - 5); // below the last row
    ASSERT_EQ(tree()->itemAt(empty), nullptr);
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, empty);
    QMouseEvent move(QEvent::MouseMove, empty + QPoint(0, -30), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move); // a drag would block here in its own loop
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, empty + QPoint(0, -30));
    EXPECT_EQ(tree()->currentItem(), nullptr);

    ATBItem* first = ToolBoxWidget::ItemOf(Row("First"));
    ASSERT_TRUE(first);
    first->SetName("First, edited");
    toolBox()->UpdateItem(first);
    ASSERT_TRUE(toolBox()->IsModified());
    {
        const TestSupport::FileSizeLimit full(kToolBox.size() / 2);
        command = nullptr; // the host closing: the only time the file is written
    }
    EXPECT_EQ(ReadAll(atb()), kToolBox);
    EXPECT_EQ(QDir(root.filePath("Model/atb")).entryList(QDir::Files | QDir::Hidden), QStringList{"ToolBox.atb"});
}

// The host loads one file and finds both exports in it, as it would at run time;
// the module makes its commands by name in any case, and one never opened never
// touches the tool box file.
TEST(PluginModule, BothExportsResolveFromTheLibraryTheHostLoadsAndMakeTheirObjects)
{
    QLibrary library(QCoreApplication::applicationDirPath() + "/libModelBuilder.so");
    ASSERT_TRUE(library.load()) << qPrintable(library.errorString());
    using GetAlgoObjFn = HostTask::IHostTask* (*)(const QString&);
    auto getAlgoObj = reinterpret_cast<GetAlgoObjFn>(library.resolve("GetAlgoObj"));
    ASSERT_TRUE(getAlgoObj);
    HostCore::_ptr_t<HostTask::IHostTask> task(getAlgoObj("ModelAlgo"));
    EXPECT_TRUE(task);
    EXPECT_EQ(getAlgoObj("modelalgo"), nullptr);

    using GetPluginModuleFn = HostShell::CMDPluginModule* (*)();
    auto getPluginModule = reinterpret_cast<GetPluginModuleFn>(library.resolve("GetPluginModule"));
    ASSERT_TRUE(getPluginModule);
    HostCore::_ptr_t<HostShell::CMDPluginModule> module(getPluginModule());
    ASSERT_TRUE(module);
    auto toolBox = module->CreateCommand("toolbox_toolbox", "");
    EXPECT_TRUE(dynamic_cast<ToolBoxCommand*>(toolBox.get()));
    auto python = module->CreateCommand("TOOLBOX_PYTHON", "ignored");
    ASSERT_TRUE(dynamic_cast<PythonCommand*>(python.get()));
    python->OnClick(); // does nothing, and must not fail
    EXPECT_FALSE(module->CreateCommand("ToolBox_Other", ""));
    EXPECT_EQ(toolBox->RefCount(), 1);

    QTemporaryDir root;
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(root.path() + "/bin");
    toolBox = module->CreateCommand("toolbox_toolbox", "");
    toolBox = nullptr;
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
    EXPECT_FALSE(QFileInfo::exists(root.path() + "/Model/atb/ToolBox.atb"));
}

// Export leaves the tree as it was; Remove asks and only Yes deletes; Delete takes
// a folder at once and leaves its models.
TEST_F(ToolBoxActions, ExportRemoveAndDeleteAsTheirMenusSay)
{
    PickFile(root.filePath("elsewhere/out.apc"));
    Menu("First", {"Export"});
    EXPECT_EQ(ReadAll(root.filePath("elsewhere/out.apc")), kWide);
    EXPECT_FALSE(toolBox()->IsModified());
    for (auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        const bool no = answer == QMessageBox::No;
        SCOPED_TRACE(no ? "no" : "yes");
        GuiDriver::ExpectMessage("Warning", "Whether to delete or not?", answer);
        Menu("Second", {"Remove"});
        EXPECT_EQ(QFileInfo::exists(apc("second")), no);
        EXPECT_EQ(Children("Mine").contains("Second"), no);
        EXPECT_EQ(toolBox()->IsModified(), !no);
    }
    Menu("Mine", {"Delete"});
    EXPECT_EQ(Children("Models"), QStringList({"Shipped"}));
    EXPECT_TRUE(QFileInfo::exists(apc("first")));
    const QString text = Shutdown();
    EXPECT_FALSE(text.contains("Second") || text.contains("Mine"));
}

// ---------------------------------------------------------------------------
// The translation and the desktop host

// Every text is translated, keeps its placeholders and endings, and data stays
// usable. Then every English text the file translates that still shows on screen
// means its context in the file is not the one the code asks for. Texts of
// namespaced classes are looked up under their class names, as a host's own
// translation file names them.
TEST(Translation, EveryTextIsTranslatedAndFoundUnderTheContextTheWidgetsAskFor)
{
    const std::vector<Message> messages = ReadTs(TsPath());
    ASSERT_GT(messages.size(), 100u) << TsPath().toStdString();
    QTranslator compiled; // taken out again when it goes
    ASSERT_TRUE(compiled.load(QmPath()) && QCoreApplication::installTranslator(&compiled)) << QmPath().toStdString();
    QMap<QString, QString> translated;
    QStringList kept; // texts a context keeps as they are, as the editor's Delete shortcut
    int json = 0;
    for (const Message& m : messages) {
        if (m.translation != m.source)
            translated.insert(m.source, m.context);
        else
            kept << m.source;
        SCOPED_TRACE((m.context + " | " + m.source).toStdString());
        // A filter's default value names output parameters: it is no text to translate.
        if (QJsonDocument::fromJson(m.source.toUtf8()).isObject()) {
            ++json;
            EXPECT_EQ(m.translation, m.source);
        }
        // The editor reads this text as the shortcut of its Delete action.
        if (m.context == "ModelControler" && m.source == "Delete") {
            EXPECT_EQ(QKeySequence(m.translation), QKeySequence(Qt::Key_Delete));
        }
        EXPECT_TRUE(m.type.isEmpty()) << m.type.toStdString();
        EXPECT_FALSE(m.translation.trimmed().isEmpty());
        // The host loads the .qm: a stale or partial one shows here.
        EXPECT_EQ(compiled.translate(m.context.toUtf8(), m.source.toUtf8()), m.translation);
        EXPECT_EQ(Placeholders(m.translation), Placeholders(m.source));
        EXPECT_EQ(Ending(m.translation), Ending(m.source));
        EXPECT_EQ(Leading(m.translation), Leading(m.source));
        EXPECT_EQ(m.translation.count('&'), m.source.count('&')) << "mnemonics";
    }
    EXPECT_EQ(json, 2) << "the raster and vector iterators' filters";

    std::vector<std::unique_ptr<QWidget>> widgets;
    for (const Plugin::DataTypeInfo& info : Plugin::DataTypeFactory::GetDataTypeInfo()) {
        SCOPED_TRACE(info.type.toStdString());
        EXPECT_FALSE(translated.contains(info.label)) << info.label.toStdString();
        widgets.emplace_back(Plugin::DataTypeFactory::CreateDataTypeWidget(info.type, QString()));
    }
    std::unique_ptr<Plugin::AlgoInfo> algo(Plugin::GetAlgoInfo(QStringLiteral("raster.aspect"), nullptr));
    ASSERT_NE(algo, nullptr);
    widgets.emplace_back(new ATBCreateCircuitDlg);
    widgets.emplace_back(new Plugin::ToolBoxWidget);

    QTemporaryDir dir;
    ASSERT_TRUE(WriteAll(dir.filePath("m.apc"), TestSupport::kStepAndThreeVars));
    auto* window = new Plugin::ModelControler(dir.filePath("m.apc"), false);
    widgets.emplace_back(window);
    Plugin::APCArrow* arrow = window->GetDocument()->GetArrows().value(0);
    ASSERT_TRUE(arrow);
    new Plugin::APCArrowDlg(arrow, window); // the window takes it along
    Plugin::APCLog log;
    log.LogStart("m", QString());

    QStringList shown{log.GetLogText().section(' ', 0, 2)};
    for (QAction* action : window->findChildren<QAction*>())
        shown << action->text() << action->statusTip();
    std::vector<QWidget*> roots{algo->GetAlgoDialog()};
    for (const auto& w : widgets)
        roots.push_back(w.get());
    for (QWidget* root : roots) {
        QList<QWidget*> all = root->findChildren<QWidget*>();
        all << root;
        for (QWidget* w : all) {
            shown << w->windowTitle();
            shown << w->toolTip();
            if (auto* label = qobject_cast<QLabel*>(w))
                shown << label->text();
            if (auto* button = qobject_cast<QAbstractButton*>(w))
                shown << button->text();
            if (auto* combo = qobject_cast<QComboBox*>(w))
                for (int i = 0; i < combo->count(); ++i)
                    shown << combo->itemText(i);
            if (auto* table = qobject_cast<QTableWidget*>(w))
                for (int c = 0; c < table->columnCount(); ++c)
                    shown << (table->horizontalHeaderItem(c) ? table->horizontalHeaderItem(c)->text() : QString());
        }
    }
    shown.removeDuplicates();
    int checked = 0;
    for (const QString& text : shown) {
        if (text.isEmpty() || kept.contains(text))
            continue;
        ++checked;
        EXPECT_FALSE(translated.contains(text))
            << "shown in English: \"" << text.toStdString() << "\" (translated under "
            << translated.value(text).toStdString() << ")";
    }
    EXPECT_GT(checked, 40);
}

// The host picks the language from its option or the system's locale; run twice
// with settings of its own, it comes back as the first run left it.
TEST(DesktopHost, TakesTheLanguageFromItsOptionOrTheLocaleAndRemembersItsWindow)
{
    if (HostProgram().isEmpty())
        GTEST_SKIP() << "the modelbuilder program is not built";
    const QStringList chinese{"title: 模型构建器", "toolbar: 命令", "action: 工具箱", "action: Python",
                              "dock: 工具箱"};
    const QStringList english{"title: Model Builder", "toolbar: Commands", "action: Tool Box", "action: Python",
                              "dock: Tool Box"};
    struct Case
    {
        const char* name;
        QStringList arguments;
        QByteArray locale;
        QStringList expected;
    };
    const Case runs[] = {
        {"option", {"--lang", "zh_CN"}, "C", chinese},
        {"system locale", {}, "zh_CN.UTF-8", chinese},
        {"option over locale", {"--lang", "en"}, "zh_CN.UTF-8", english},
        {"language without a file", {"--lang", "fr_FR"}, "C", english},
    };
    QTemporaryDir config;
    for (const Case& run : runs) {
        SCOPED_TRACE(run.name);
        EXPECT_EQ(RunHost(config.path(), QStringList{"--dump-texts"} + run.arguments, run.locale)
                      .split('\n', Qt::SkipEmptyParts),
                  run.expected);
    }

    ASSERT_FALSE(RunHost(config.path(), {"--screenshot", config.filePath("first.png")}).startsWith("failed"));
    QSettings settings(config.filePath("ReferenceHost/GeodataDesktop.conf"), QSettings::IniFormat);
    ASSERT_FALSE(settings.value("MainWindow/state").toByteArray().isEmpty());

    // The layout it kept puts the tool box at the right, about 300 wide.
    QMainWindow window;
    window.setCentralWidget(new QWidget);
    auto* dock = new QDockWidget(&window);
    dock->setObjectName("ToolBox_ToolBox");
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    window.restoreGeometry(settings.value("MainWindow/geometry").toByteArray());
    window.show();
    ASSERT_TRUE(window.restoreState(settings.value("MainWindow/state").toByteArray(), 1));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.dockWidgetArea(dock), Qt::RightDockWidgetArea);
    EXPECT_NEAR(dock->width(), 300, 30);

    // A window the user left smaller comes back at that size.
    window.setGeometry(40, 30, 700, 450);
    settings.setValue("MainWindow/geometry", window.saveGeometry());
    settings.sync();
    ASSERT_FALSE(RunHost(config.path(), {"--screenshot", config.filePath("second.png")}).startsWith("failed"));
    EXPECT_EQ(QImage(config.filePath("second.png")).size(), QSize(700, 450));
}
