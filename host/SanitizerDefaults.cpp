// Sanitizer settings compiled into the programs of a sanitizer build (tests and
// mbrun), so that they hold without environment variables, test discovery included.
// The libraries named are not built with the sanitizers: one-time allocations they
// keep until exit, and synchronisation that ThreadSanitizer cannot see inside them
// (futex-based mutexes, Qt's future state), are not ours.

extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Gui.so\nleak:libQt5Widgets.so\nleak:libQt5Core.so\nleak:libqoffscreen\n"
           "leak:libfontconfig\nleak:libgdal\nleak:libproj\nleak:libglib\n";
}

extern "C" const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt5Core.so.5\ncalled_from_lib:libQt5Widgets.so.5\ncalled_from_lib:libgdal.so.32\n"
           "called_from_lib:libproj.so.25\ncalled_from_lib:libsqlite3.so.0\n"
           "race:QThreadPool\nrace:QFutureInterfaceBase\nrace:QFutureInterface\nrace:ResultStoreBase\n"
           "race:QMutex\nrace:libglib\ndeadlock:libgdal.so.32\ndeadlock:libsqlite3.so.0\n";
}

extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1:halt_on_error=1";
}
