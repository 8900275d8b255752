// The layers as the loader sees them: mbrun and the core library must start on
// a machine with no GUI libraries, so neither may need Qt's widget or GUI stack,
// directly or through any library it loads.
#include <QCoreApplication>
#include <QProcess>
#include <gtest/gtest.h>

TEST(Layering, MbrunAndTheCoreNeedNoGuiLibraries)
{
    const QString bin = QCoreApplication::applicationDirPath();
    for (const QString& file : {bin + "/mbrun", bin + "/libModelBuilderCore.so"}) {
        SCOPED_TRACE(file.toStdString());
        QProcess ldd;
        ldd.start("ldd", {file});
        ASSERT_TRUE(ldd.waitForFinished(30000));
        const QString needed = QString::fromLocal8Bit(ldd.readAllStandardOutput());
        ASSERT_TRUE(needed.contains("libQt5Core")) << qPrintable(needed); // ldd really listed it
        EXPECT_FALSE(needed.contains("libQt5Widgets")) << qPrintable(needed);
        EXPECT_FALSE(needed.contains("libQt5Gui")) << qPrintable(needed);
        EXPECT_FALSE(needed.contains("libModelBuilder.so")) << qPrintable(needed);
    }
}
