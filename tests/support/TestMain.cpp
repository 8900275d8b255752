// Test main: an application object so that suites can run event loops (and, in
// the interface suites, widgets offscreen), and the host's test algorithms in the
// registry. Headless suites get a QCoreApplication: they must not need more.
#include "HostRunner/ExcuteAlgo.h"

#ifdef MB_TEST_GUI
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    TestApplication app(argc, argv);
    HostRunner::RegisterTestAlgorithms();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
