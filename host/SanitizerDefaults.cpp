// Sanitizer settings compiled into the programs of a sanitizer build (tests, mbrun,
// modelbuilder), so that they hold without environment variables, test discovery
// included. They leave out only what third-party libraries, which are not built with
// the sanitizers, do on their own, so that a leak or race of ours, on whatever thread,
// is still reported. Each entry says why it is there.

// A leak entry names the third-party function that allocates the block (the first
// frame above malloc, which is all a stack through an uninstrumented library keeps);
// what that block points to is then not reported either.
extern "C" const char* __lsan_default_suppressions()
{
    return
        // The offscreen platform registers its screen (with cursor) once and never frees it.
        "leak:QWindowSystemInterface::handleScreenAdded\n"
        // A line edit's clear-button fade is an animation without parent that frees itself
        // only when it ends in an event loop; a test that ends first leaves it. We make none.
        "leak:QPropertyAnimation::QPropertyAnimation\n";
}

// ThreadSanitizer sees what an uninstrumented library does only through the calls
// it intercepts (allocation, copies, pthread), not its plain loads and stores nor
// its futex-based locks. Only our code's own accesses decide a race of ours.
extern "C" const char* __tsan_default_suppressions()
{
    return
        // Qt Core's own bookkeeping (pool queues, posted events, wait conditions) is
        // ordered by locks the checker cannot see, so it races among Qt's threads. Its
        // frames mostly lack symbols, and naming QArrayData or QListData would also
        // hide races on our own strings and lists; our accesses to Qt objects are kept.
        "called_from_lib:libQt5Core.so.5\n"
        // Likewise Qt Widgets, whose file dialog gathers file information on a thread.
        "called_from_lib:libQt5Widgets.so.5\n"
        // GDAL creates a mutex locked while holding its master mutex, and takes the
        // master while holding other GDAL mutexes: a cycle only in order, since a
        // mutex being created cannot be waited for yet.
        "deadlock:CPLCreateOrAcquireMutexEx\n";
}

extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1:halt_on_error=1";
}
