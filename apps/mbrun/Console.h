#pragma once

#include <QString>

namespace Mbrun {

// mbrun's two streams. Each call writes and flushes at once, so that the lines of
// a run and mbrun's own lines keep their order in a terminal or a log file.
class Console
{
public:
    static void Out(const QString& text);
    static void Err(const QString& text);
    // Flushes both streams (before a quick exit).
    static void Flush();
};

} // namespace Mbrun
