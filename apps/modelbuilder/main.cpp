// modelbuilder: the desktop host. It loads the plug-in library, asks its module
// for the commands of its configuration, shows one tool-bar action per command,
// and destroys the commands when the window closes (the tool box is saved then).
#include "HostCore/_ptr_t.h"
#include "HostDesktop/IApplication.h"
#include "HostShell/CMDPluginModule.h"
#include "HostShell/EnvironmentSetting.h"
#include "HostShell/ICommand.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QCommandLineParser>
#include <QLibrary>
#include <QMainWindow>
#include <QMessageBox>
#include <QStatusBar>
#include <QTextCodec>
#include <QTimer>
#include <QToolBar>

#include <vector>

namespace {

using CommandPtr = HostCore::_ptr_t<HostShell::ICommand>;

class MainWindow : public QMainWindow, public HostDesktop::IApplication
{
public:
    QMainWindow* GetMainWindow() override { return this; }

    void AddCommand(const CommandPtr& command)
    {
        m_commands.push_back(command);
        HostShell::ICommand* raw = command.get();
        QAction* action = m_toolBar->addAction(raw->GetCaption());
        action->setToolTip(raw->GetToolTip());
        action->setObjectName(raw->GetName());
        connect(action, &QAction::triggered, this, [raw] { raw->OnClick(); });
        m_actions.push_back(action);
    }

    // Commands are asked often whether they are enabled, as the host's frame does.
    void StartPolling()
    {
        auto* timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [this] {
            for (size_t i = 0; i < m_commands.size(); ++i)
                m_actions[i]->setEnabled(m_commands[i]->IsEnable());
        });
        timer->start(250);
    }

    MainWindow() : m_toolBar(addToolBar(QStringLiteral("Commands"))) { m_toolBar->setObjectName("Commands"); }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        // The plug-in's own windows (model editors) are closed first, so each can
        // ask about unsaved edits; one that refuses keeps the application open.
        for (QMainWindow* child : findChildren<QMainWindow*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->isVisible() && !child->close()) {
                event->ignore();
                return;
            }
        }
        // The commands go while the window and its docks still exist.
        m_actions.clear();
        m_commands.clear();
        QMainWindow::closeEvent(event);
    }

private:
    QToolBar* m_toolBar;
    std::vector<CommandPtr> m_commands;
    std::vector<QAction*> m_actions;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("modelbuilder"));
    // File names and texts handed to GDAL are local 8-bit: make that UTF-8.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Model Builder: chains geodata algorithms into models."));
    parser.addHelpOption();
    QCommandLineOption commandsOption(QStringLiteral("commands"),
                                      QStringLiteral("Commands to create, comma separated (default ToolBox_ToolBox,ToolBox_Python)."),
                                      QStringLiteral("names"), QStringLiteral("ToolBox_ToolBox,ToolBox_Python"));
    parser.addOption(commandsOption);
    QCommandLineOption shotOption(QStringLiteral("screenshot"),
                                  QStringLiteral("Save a picture of the window to FILE after a second, then quit."),
                                  QStringLiteral("FILE"));
    parser.addOption(shotOption);
    parser.process(app);

    MainWindow window;
    window.setWindowTitle(QStringLiteral("Model Builder"));
    window.resize(1024, 700);

    const QString appBin = HostShell::EnvironmentSetting::Instance()->GetAppBinDir();
    QLibrary library(appBin + QStringLiteral("/libModelBuilder.so"));
    using GetModule = HostShell::CMDPluginModule* (*)();
    auto getModule = reinterpret_cast<GetModule>(library.resolve("GetPluginModule"));
    HostCore::_ptr_t<HostShell::CMDPluginModule> module(getModule ? getModule() : nullptr);
    if (!module) {
        QMessageBox::critical(nullptr, window.windowTitle(),
                              QStringLiteral("The plug-in library could not be loaded:\n%1").arg(library.errorString()));
        return 1;
    }
    for (const QString& name : parser.value(commandsOption).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        CommandPtr command = module->CreateCommand(name.trimmed(), QString());
        if (!command) {
            window.statusBar()->showMessage(QStringLiteral("Unknown command: %1").arg(name), 10000);
            continue;
        }
        command->OnCreate(static_cast<HostDesktop::IApplication*>(&window));
        window.AddCommand(command);
    }
    window.StartPolling();
    window.show();
    // Open the tool box at once, as a user would with the first click.
    if (QAction* toolBox = window.findChild<QAction*>(QStringLiteral("ToolBox_ToolBox")))
        toolBox->trigger();
    if (parser.isSet(shotOption))
        QTimer::singleShot(1000, &window, [&] {
            window.grab().save(parser.value(shotOption));
            window.close();
        });
    const int status = app.exec();
    return status;
}
