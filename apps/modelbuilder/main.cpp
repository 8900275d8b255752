// modelbuilder: the desktop host. It loads the plug-in library, asks its module
// for the commands of its configuration, shows one tool-bar action per command,
// and destroys the commands when the window closes (the tool box is saved then).
#include "HostWindow.h"

#include "HostCore/_ptr_t.h"
#include "HostShell/CMDPluginModule.h"
#include "HostShell/EnvironmentSetting.h"
#include "HostShell/ICommand.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLibrary>
#include <QMessageBox>
#include <QStatusBar>
#include <QTextCodec>
#include <QTimer>

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

    HostWindow window;
    window.setWindowTitle(QStringLiteral("Model Builder"));
    window.RestoreGeometry();

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
    window.setWindowIcon(QIcon(QStringLiteral(":/res/ATB_AlgoDepend.ico"))); // from the plug-in, now loaded
    for (const QString& name : parser.value(commandsOption).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        HostCore::_ptr_t<HostShell::ICommand> command = module->CreateCommand(name.trimmed(), QString());
        if (!command) {
            window.statusBar()->showMessage(QStringLiteral("Unknown command: %1").arg(name), 10000);
            continue;
        }
        command->OnCreate(static_cast<HostDesktop::IApplication*>(&window));
        window.AddCommand(command);
    }
    window.StartPolling();
    window.show();
    // Open the tool box at once, as a user would with the first click, then lay
    // its dock out as the last run left it.
    if (QAction* toolBox = window.FindAction(QStringLiteral("ToolBox_ToolBox")))
        toolBox->trigger();
    window.RestoreDocks();
    if (parser.isSet(shotOption))
        QTimer::singleShot(1000, &window, [&] {
            window.grab().save(parser.value(shotOption));
            window.close();
        });
    return app.exec();
}
