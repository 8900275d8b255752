#include "HostDesktop/IApplication.h"
#include "HostShell/EnvironmentSetting.h"
#include "HostTask/IHostTask.h"
#include "plugin/PythonCommand.h"
#include "plugin/ToolBoxPlugin.h"
#include "support/TestSupport.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBFolder.h"
#include "toolbox/ATBTreeWidget.h"
#include "toolbox/ToolBoxCommand.h"
#include "toolbox/ToolBoxWidget.h"

#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QLibrary>
#include <QTextCodec>
#include <gtest/gtest.h>

using namespace Plugin;
using TestSupport::ReadAll;
using TestSupport::WriteAll;

extern "C" HostShell::CMDPluginModule* GetPluginModule();

namespace {

const QByteArray kToolBox = R"(<?xml version="1.0" encoding="GB2312" standalone="no"?>
<Configuration>
    <ToolBox name="ToolBox">
        <Group name="Models">
            <Folder name="Mine" canDelete="1">
                <APC name="First" file="Model/apc/first.apc" description=""/>
                <APC name="Second" file="Model/apc/second.apc" description=""/>
            </Folder>
            <Algo name="Slope" metadata="raster.slope" description=""/>
        </Group>
    </ToolBox>
</Configuration>
)";

class Host : public HostDesktop::IApplication
{
public:
    QMainWindow window;
    QMainWindow* GetMainWindow() override { return &window; }
};

QStringList rowNames(QTreeWidgetItem* row)
{
    QStringList names;
    for (int i = 0; i < row->childCount(); ++i)
        names << row->child(i)->text(0);
    return names;
}

} // namespace

// An installation in a temporary folder with its tool box file.
class ToolBoxPanel : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(root.path()).mkpath("bin"));
        ASSERT_TRUE(QDir(root.path()).mkpath("Model/atb"));
        HostShell::EnvironmentSetting::Instance()->SetAppBinDir(root.path() + "/bin");
        ASSERT_TRUE(WriteAll(atb(), kToolBox));
    }
    void TearDown() override { HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString()); }
    QString atb() const { return root.path() + "/Model/atb/ToolBox.atb"; }

    // A command as the host makes it, opened once.
    HostCore::_ptr_t<HostShell::ICommand> Open(Host& host)
    {
        HostCore::_ptr_t<HostShell::ICommand> command(new ToolBoxCommand);
        command->OnCreate(static_cast<HostDesktop::IApplication*>(&host));
        command->OnClick();
        return command;
    }

    QTemporaryDir root;
};

TEST_F(ToolBoxPanel, OpensTheFileIntoADockOnTheRight)
{
    Host host;
    auto command = Open(host);
    auto* toolBox = static_cast<ToolBoxCommand*>(command.get());
    ASSERT_TRUE(toolBox->GetDock());
    EXPECT_EQ(host.window.dockWidgetArea(toolBox->GetDock()), Qt::RightDockWidgetArea);
    QTreeWidget* tree = toolBox->GetToolBox()->GetTree();
    ASSERT_EQ(tree->topLevelItemCount(), 1);
    QTreeWidgetItem* models = tree->topLevelItem(0);
    EXPECT_EQ(rowNames(models), QStringList({"Mine", "Slope"}));
    EXPECT_EQ(rowNames(models->child(0)), QStringList({"First", "Second"}));
    EXPECT_FALSE(models->icon(0).isNull()); // the icons come from the plug-in's resources
    ATBItem* first = ToolBoxWidget::ItemOf(models->child(0)->child(0));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->GetName(), "First");
    EXPECT_EQ(first->GetParentWidget(), &host.window);

    // Closed by the user, shown again by the next click with the same tree.
    toolBox->GetDock()->close();
    command->OnClick();
    EXPECT_FALSE(toolBox->GetDock()->isHidden());
    EXPECT_EQ(toolBox->GetToolBox()->GetTree(), tree);
}

TEST_F(ToolBoxPanel, AnUnchangedTreeLeavesTheFileAlone)
{
    const QByteArray odd = kToolBox + "<!-- kept only if nobody writes -->\n";
    ASSERT_TRUE(WriteAll(atb(), odd));
    {
        Host host;
        auto command = Open(host);
    }
    EXPECT_EQ(ReadAll(atb()), odd);
}

TEST_F(ToolBoxPanel, ChangesReachTheFileInTreeOrderAtExit)
{
    {
        Host host;
        auto command = Open(host);
        ToolBoxWidget* widget = static_cast<ToolBoxCommand*>(command.get())->GetToolBox();
        QTreeWidgetItem* mine = widget->GetTree()->topLevelItem(0)->child(0);
        auto* first = dynamic_cast<ATBAlgoDepend*>(ToolBoxWidget::ItemOf(mine->child(0)));
        auto* second = ToolBoxWidget::ItemOf(mine->child(1));
        ASSERT_TRUE(first && second);

        // An edited item moves to the end of its siblings.
        first->SetName("First, edited");
        widget->UpdateItem(first);
        EXPECT_TRUE(widget->IsModified());
        EXPECT_EQ(rowNames(mine), QStringList({"Second", "First, edited"}));

        // A folder that changes comes back at the end, with its children in the
        // order of its list, which only the file's next reading brings in line.
        auto* folder = dynamic_cast<ATBFolder*>(ToolBoxWidget::ItemOf(mine));
        ASSERT_TRUE(folder);
        widget->UpdateItem(folder);
        QTreeWidgetItem* models = widget->GetTree()->topLevelItem(0);
        EXPECT_EQ(rowNames(models), QStringList({"Slope", "Mine"}));
        EXPECT_EQ(rowNames(models->child(1)), QStringList({"First, edited", "Second"}));
        EXPECT_FALSE(models->child(1)->isExpanded());
    }
    const QString text = QTextCodec::codecForName("gb2312")->toUnicode(ReadAll(atb()));
    EXPECT_LT(text.indexOf("Slope"), text.indexOf("Mine"));
    EXPECT_LT(text.indexOf("First, edited"), text.indexOf("\"Second\""));
}

TEST_F(ToolBoxPanel, AChangedTreeOnAFullDiskKeepsTheOldFileWhole)
{
    {
        Host host;
        auto command = Open(host);
        ToolBoxWidget* widget = static_cast<ToolBoxCommand*>(command.get())->GetToolBox();
        ATBItem* first = ToolBoxWidget::ItemOf(widget->GetTree()->topLevelItem(0)->child(0)->child(0));
        ASSERT_TRUE(first);
        first->SetName("First, edited");
        widget->UpdateItem(first);
        ASSERT_TRUE(widget->IsModified());
        const TestSupport::FileSizeLimit full(kToolBox.size() / 2);
        command.reset(); // the host closing: the only time the file is written
    }
    EXPECT_EQ(ReadAll(atb()), kToolBox);
    EXPECT_EQ(QDir(root.path() + "/Model/atb").entryList(QDir::Files | QDir::Hidden), QStringList{"ToolBox.atb"});
}

TEST_F(ToolBoxPanel, ADamagedFileGivesAnEmptyPanelAndIsNotOverwritten)
{
    ASSERT_TRUE(WriteAll(atb(), "<Configuration><ToolBox>"));
    {
        Host host;
        auto command = Open(host);
        EXPECT_EQ(static_cast<ToolBoxCommand*>(command.get())->GetToolBox()->GetTree()->topLevelItemCount(), 0);
    }
    EXPECT_EQ(ReadAll(atb()), "<Configuration><ToolBox>");
}

TEST_F(ToolBoxPanel, PressingOnEmptySpaceAndMovingStartsNoDrag)
{
    Host host;
    auto command = Open(host);
    ATBTreeWidget* tree = static_cast<ToolBoxCommand*>(command.get())->GetToolBox()->GetTree();
    tree->resize(300, 400);
    tree->setCurrentItem(tree->topLevelItem(0));
    QWidget* viewport = tree->viewport();
    const QPoint empty(150, 350); // below the last row
    ASSERT_EQ(tree->itemAt(empty), nullptr);
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, empty);
    QMouseEvent move(QEvent::MouseMove, empty + QPoint(0, -30), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move); // a drag would block here in its own loop
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, empty + QPoint(0, -30));
    EXPECT_EQ(tree->currentItem(), nullptr);
}

TEST(PluginModule, MakesItsCommandsByNameInAnyCase)
{
    HostCore::_ptr_t<HostShell::CMDPluginModule> module(GetPluginModule());
    ASSERT_TRUE(module);
    auto toolBox = module->CreateCommand("toolbox_toolbox", "");
    EXPECT_TRUE(dynamic_cast<ToolBoxCommand*>(toolBox.get()));
    EXPECT_TRUE(toolBox->IsEnable());
    auto python = module->CreateCommand("TOOLBOX_PYTHON", "ignored");
    ASSERT_TRUE(dynamic_cast<PythonCommand*>(python.get()));
    python->OnClick(); // does nothing, and must not fail
    EXPECT_FALSE(module->CreateCommand("ToolBox_Other", ""));
    EXPECT_EQ(toolBox->RefCount(), 1);
}

// The host loads one file and finds both exports in it, as it would at run time.
TEST(PluginModule, BothExportsResolveFromTheLibraryTheHostLoads)
{
    QLibrary library(QCoreApplication::applicationDirPath() + "/libModelBuilder.so");
    ASSERT_TRUE(library.load()) << qPrintable(library.errorString());
    EXPECT_TRUE(library.resolve("GetPluginModule"));
    using GetAlgoObjFn = HostTask::IHostTask* (*)(const QString&);
    auto getAlgoObj = reinterpret_cast<GetAlgoObjFn>(library.resolve("GetAlgoObj"));
    ASSERT_TRUE(getAlgoObj);
    HostCore::_ptr_t<HostTask::IHostTask> task(getAlgoObj("ModelAlgo"));
    EXPECT_TRUE(task);
    EXPECT_EQ(getAlgoObj("modelalgo"), nullptr);
}

TEST(PluginModule, ACommandNeverOpenedNeverTouchesTheFile)
{
    QTemporaryDir root;
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(root.path() + "/bin");
    {
        HostCore::_ptr_t<HostShell::ICommand> command(new ToolBoxCommand);
    }
    HostShell::EnvironmentSetting::Instance()->SetAppBinDir(QString());
    EXPECT_FALSE(QFileInfo::exists(root.path() + "/Model/atb/ToolBox.atb"));
}
