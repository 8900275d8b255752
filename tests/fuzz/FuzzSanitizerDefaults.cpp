// Sanitizer settings compiled into the fuzz targets, so that `make fuzz` needs no
// environment. Undefined behaviour stops the run, and the fuzzer keeps the input.
// A leak check runs after any input that allocated more than it freed, and at
// exit. Left out are only allocations made inside libraries that keep them on
// purpose, none of which our code calls: fontconfig keeps the fonts the first menu
// loaded, and the offscreen platform never frees its screen.

extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\nleak:libqoffscreen\nleak:QWindowSystemInterface::handleScreenAdded\n"
           "leak:QPlatformScreen::QPlatformScreen\n";
}

extern "C" const char* __ubsan_default_options()
{
    return "print_stacktrace=1:halt_on_error=1";
}
