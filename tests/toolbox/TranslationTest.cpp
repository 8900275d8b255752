// The Simplified Chinese translation: every text of translations/ModelBuilder_zh_CN.ts
// is translated in the compiled file the host loads, the translation keeps what the
// code relies on, the widgets find their texts under the contexts they ask for, and
// the desktop host picks the language from its option or the system's locale and
// keeps its window between runs.
#include "HostCatalogGui/AlgoInfo.h"
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DataTypeWidget.h"
#include "dialogs/APCArrowDlg.h"
#include "editor/ModelControler.h"
#include "engine/APCLog.h"
#include "model/APCArrow.h"
#include "support/ModelFixtures.h"
#include "toolbox/ATBCreateCircuitDlg.h"
#include "toolbox/ToolBoxWidget.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMainWindow>
#include <QJsonDocument>
#include <QKeySequence>
#include <QLabel>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

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

} // namespace

TEST(TranslationFile, EveryTextIsTranslatedKeepsPlaceholdersAndEndingsAndDataStaysUsable)
{
    const std::vector<Message> messages = ReadTs(TsPath());
    ASSERT_GT(messages.size(), 100u) << TsPath().toStdString();
    QTranslator compiled;
    ASSERT_TRUE(compiled.load(QmPath())) << QmPath().toStdString();
    int json = 0;
    for (const Message& m : messages) {
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
}

// Every English text the file translates; one still on screen means its context
// in the file is not the one the code asks for. Texts of namespaced classes are
// looked up under their class names, as a host's own translation file names them.
TEST(TranslationRuntime, WindowsFormsAndDialogsFindTheirTextsUnderTheirClassNames)
{
    QMap<QString, QString> translated;
    QStringList kept; // texts a context keeps as they are, as the editor's Delete shortcut
    for (const Message& m : ReadTs(TsPath()))
        if (m.translation != m.source)
            translated.insert(m.source, m.context);
        else
            kept << m.source;
    QTranslator installed; // taken out again when it goes
    ASSERT_TRUE(installed.load(QmPath()) && QCoreApplication::installTranslator(&installed));

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
    {
        TestSupport::HeadlessModel model;
        TestSupport::AddAlgo(model, "test.copyText");
        ASSERT_TRUE(model.SaveFile(dir.filePath("m.apc")));
    }
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

namespace {

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
