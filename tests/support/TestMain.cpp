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

// Sanitizer settings compiled into every test program, so that they hold for test
// discovery as well as for the runs. The libraries named are not built with the
// sanitizers: one-time allocations they keep until exit, and synchronisation that
// ThreadSanitizer cannot see inside them, are not ours.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Gui.so\nleak:libQt5Widgets.so\nleak:libQt5Core.so\nleak:libfontconfig\n"
           "leak:libgdal\nleak:libproj\nleak:libglib\n";
}

extern "C" const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt5Core.so.5\ncalled_from_lib:libgdal.so.32\nrace:QThreadPool\n"
           "race:QFutureInterfaceBase\nrace:QMutex\nrace:libglib\ncalled_from_lib:libsqlite3.so.0\n";
}

extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1:halt_on_error=1";
}
