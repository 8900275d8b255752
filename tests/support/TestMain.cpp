// Test main: a QApplication so that suites can run event loops and widgets
// (offscreen), and the host's test algorithms in the registry.
#include "HostRunner/ExcuteAlgo.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    HostRunner::RegisterTestAlgorithms();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

