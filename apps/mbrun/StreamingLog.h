#pragma once

#include "engine/APCLog.h"

namespace Mbrun {

// The run's log, streamed to standard output as it is written.
class StreamingLog : public Plugin::APCLog
{
public:
    void Write(const QString& text) override;
    void WriteError(const QString& text) override;
    // A failed step's block was written.
    bool Failed() const { return m_failed; }

private:
    bool m_failed = false;
};

} // namespace Mbrun
