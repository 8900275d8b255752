#pragma once

#include "engine/APCLog.h"

namespace Plugin {

class ModelControler;

// The log of a model window: kept as every log is, and shown in the window's
// Output and Error panels as it is written.
class APCConsoleLog : public APCLog
{
public:
    explicit APCConsoleLog(ModelControler* window) : m_window(window) {}

    void Write(const QString& text) override;
    void WriteError(const QString& text) override;

private:
    ModelControler* m_window; // not owned
};

} // namespace Plugin
