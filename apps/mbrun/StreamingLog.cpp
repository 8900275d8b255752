#include "StreamingLog.h"

#include "Console.h"

namespace Mbrun {

void StreamingLog::Write(const QString& text)
{
    APCLog::Write(text);
    Console::Out(text);
}

void StreamingLog::WriteError(const QString& text)
{
    APCLog::WriteError(text);
    m_failed = true;
}

} // namespace Mbrun
