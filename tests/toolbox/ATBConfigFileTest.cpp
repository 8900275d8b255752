#include "HostCatalog/AlgorithmRegistry.h"
#include "HostCatalog/Metadata.h"
#include "HostShell/EnvironmentSetting.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/Gb2312.h"
#include "support/TestSupport.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBFolder.h"
#include "toolbox/ATBGroup.h"
#include "toolbox/ATBIterator.h"
#include "toolbox/ATBPython.h"

#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QTemporaryDir>
#include <QTextCodec>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <typeinfo>

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

TEST_F(ToolBoxFile, CharactersBeyondTheEncodingAreNotLost)
{
    ATBConfigFile config;
    auto* model = new ATBAlgoDepend(false);
    model->SetName(QStringLiteral("河流 🌊 Ærø"));
    model->SetFile("Model/apc/river.apc");
    config.GetItems().append(model);
    ASSERT_TRUE(config.Save(path("t.atb")));
    qDeleteAll(config.GetItems());

    const QByteArray bytes = ReadAll(path("t.atb"));
    EXPECT_TRUE(bytes.startsWith("<?xml version=\"1.0\" encoding=\"GB2312\" standalone=\"no\"?>"));
    Loaded loaded(path("t.atb"));
    ASSERT_TRUE(loaded.ok);
    ASSERT_EQ(loaded.items().size(), 1);
    EXPECT_EQ(loaded.items()[0]->GetName(), QStringLiteral("河流 🌊 Ærø"));
}

TEST_F(ToolBoxFile, SaveFailsCleanlyWhereNothingCanBeWritten)
{
    ATBConfigFile config;
    config.GetItems().append(new ATBGroup);
    EXPECT_FALSE(config.Save(path("no/such/folder/t.atb")));
    // A folder in the way: nothing can be written, and the folder stays.
    ASSERT_TRUE(QDir(dir.path()).mkdir("taken"));
    EXPECT_FALSE(config.Save(path("taken")));
    EXPECT_TRUE(QFileInfo(path("taken")).isDir());
    qDeleteAll(config.GetItems());
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
    int shipped = 0; // every algorithm but the tests' own
    for (const QString& name : AlgorithmRegistry::Instance().Names())
        shipped += name.startsWith("test.") ? 0 : 1;
    EXPECT_EQ(algorithms, shipped);
    EXPECT_GT(models, 0);

    QTemporaryDir dir;
    ASSERT_TRUE(loaded.file.Save(dir.filePath("again.atb")));
    EXPECT_EQ(ReadAll(dir.filePath("again.atb")), ReadAll(source + "/examples/ToolBox.atb"));
}
