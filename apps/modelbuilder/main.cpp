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
#include <QDockWidget>
#include <QIcon>
#include <QLibrary>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPair>
#include <QPixmap>
#include <QScreen>
#include <QStatusBar>
#include <QTextCodec>
#include <QTextStream>
#include <QTimer>
#include <QToolBar>
#include <QTranslator>
#include <QTreeWidget>

namespace {

// Installs the translations for lang (a locale name such as zh_CN): the
// application's own from translations/ beside the binary folder, and Qt's for
// the standard buttons and dialogs when the system has them. A language without
// a file (en among them) stays English.
void InstallTranslations(QApplication& app, const QString& lang)
{
    const QString appBin = HostShell::EnvironmentSetting::Instance()->GetAppBinDir();
    const QString ownDir = appBin + QStringLiteral("/../translations");
    const QString qtDir = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
    const QPair<QString, QString> files[] = {{QStringLiteral("ModelBuilder_"), ownDir},
                                             {QStringLiteral("qtbase_"), qtDir}};
    for (const auto& file : files) {
        auto* translator = new QTranslator(&app);
        if (translator->load(file.first + lang, file.second))
            app.installTranslator(translator);
        else
            delete translator;
    }
}

// Prints what the window says to its user, one "kind: text" line each, in UTF-8.
void DumpTexts(const HostWindow& window)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << "title: " << window.windowTitle() << '\n';
    for (const QToolBar* bar : window.findChildren<QToolBar*>()) {
        out << "toolbar: " << bar->windowTitle() << '\n';
        for (const QAction* action : bar->actions())
            out << "action: " << action->text() << '\n';
    }
    for (const QDockWidget* dock : window.findChildren<QDockWidget*>())
        out << "dock: " << dock->windowTitle() << '\n';
}

} // namespace

// Double-clicks the tool box row of that name: the tool box opens the model as
// it does for a user. A name it does not hold is said on the status bar.
void OpenFromToolBox(HostWindow& window, const QString& name)
{
    for (QTreeWidget* tree : window.findChildren<QTreeWidget*>()) {
        const QList<QTreeWidgetItem*> rows = tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        if (!rows.isEmpty()) {
            emit tree->itemDoubleClicked(rows.first(), 0);
            return;
        }
    }
    window.statusBar()->showMessage(QCoreApplication::translate("HostWindow", "No model named %1 in the tool box").arg(name),
                                    10000);
}

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
    QCommandLineOption langOption(QStringLiteral("lang"),
                                  QStringLiteral("Language of the texts, such as zh_CN or en (default: the system's)."),
                                  QStringLiteral("language"));
    parser.addOption(langOption);
    QCommandLineOption dumpOption(QStringLiteral("dump-texts"),
                                  QStringLiteral("Print the window's title, tool-bar and dock texts, then quit."));
    parser.addOption(dumpOption);
    QCommandLineOption openOption(QStringLiteral("open"),
                                  QStringLiteral("Opens the model of that name in the tool box, as a double click does."),
                                  QStringLiteral("NAME"));
    parser.addOption(openOption);
    parser.process(app);
    // Before any window or the plug-in exists: both translate as they are made.
    InstallTranslations(app, parser.isSet(langOption) ? parser.value(langOption) : QLocale::system().name());

    HostWindow window;
    window.setWindowTitle(QCoreApplication::translate("HostWindow", "Model Builder"));
    window.RestoreGeometry();

    const QString appBin = HostShell::EnvironmentSetting::Instance()->GetAppBinDir();
    QLibrary library(appBin + QStringLiteral("/libModelBuilder.so"));
    using GetModule = HostShell::CMDPluginModule* (*)();
    auto getModule = reinterpret_cast<GetModule>(library.resolve("GetPluginModule"));
    HostCore::_ptr_t<HostShell::CMDPluginModule> module(getModule ? getModule() : nullptr);
    if (!module) {
        QMessageBox::critical(nullptr, window.windowTitle(),
                              QCoreApplication::translate("HostWindow", "The plug-in library could not be loaded:\n%1")
                                  .arg(library.errorString()));
        return 1;
    }
    window.setWindowIcon(QIcon(QStringLiteral(":/res/ATB_AlgoDepend.ico"))); // from the plug-in, now loaded
    for (const QString& name : parser.value(commandsOption).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        HostCore::_ptr_t<HostShell::ICommand> command = module->CreateCommand(name.trimmed(), QString());
        if (!command) {
            window.statusBar()->showMessage(
                QCoreApplication::translate("HostWindow", "Unknown command: %1").arg(name), 10000);
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
    if (parser.isSet(openOption))
        OpenFromToolBox(window, parser.value(openOption));
    if (parser.isSet(dumpOption))
        QTimer::singleShot(0, &window, [&] {
            DumpTexts(window);
            window.close();
        });
    else if (parser.isSet(shotOption))
        QTimer::singleShot(1000, &window, [&] {
            // What the screen shows over the window, model windows included;
            // where the screen cannot be read, the window alone.
            const QRect frame = window.frameGeometry();
            QPixmap picture = window.screen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height());
            if (picture.isNull() || picture.width() < frame.width())
                picture = window.grab();
            picture.save(parser.value(shotOption));
            QApplication::closeAllWindows();
            window.close();
        });
    return app.exec();
}
