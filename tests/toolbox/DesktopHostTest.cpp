// The desktop host run as a program, twice, with settings of its own: the second
// run comes back as the first left it.
#include <QCoreApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QImage>
#include <QMainWindow>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// Runs the host until it has saved a picture of itself to shot; true when it
// ended well.
bool RunHost(const QString& program, const QString& configHome, const QString& shot)
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", configHome);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    host.setProcessEnvironment(environment);
    host.start(program, {"--screenshot", shot});
    return host.waitForFinished(60000) && host.exitStatus() == QProcess::NormalExit && host.exitCode() == 0;
}

} // namespace

TEST(DesktopHost, RemembersItsWindowAndToolBoxBetweenRuns)
{
    const QString program = QCoreApplication::applicationDirPath() + "/modelbuilder";
    if (!QFileInfo(program).isExecutable())
        GTEST_SKIP() << "the modelbuilder program is not built";
    QTemporaryDir config;
    ASSERT_TRUE(RunHost(program, config.path(), config.filePath("first.png")));
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
    ASSERT_TRUE(RunHost(program, config.path(), config.filePath("second.png")));
    EXPECT_EQ(QImage(config.filePath("second.png")).size(), QSize(700, 450));
}
