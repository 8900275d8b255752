#include "StreamingLog.h"

#include "Console.h"

namespace Mbrun {

// Not kept: the log is on standard output already, and a long run's text
// would only pile up in memory.
void StreamingLog::Write(const QString& text)
{
    Console::Out(text);
}

void StreamingLog::WriteError(const QString&)
{
    m_failed = true;
}

} // namespace Mbrun
