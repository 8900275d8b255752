#include "Console.h"

#include <cstdio>

namespace Mbrun {

void Console::Out(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

void Console::Err(const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

void Console::Flush()
{
    std::fflush(stdout);
    std::fflush(stderr);
}

} // namespace Mbrun
