#pragma once

#include <QString>

#include <functional>

namespace Plugin {

// What an algorithm gets while it runs: a progress channel and an error slot.
class AlgoRunContext
{
public:
    using ProgressFn = std::function<void(double percent, const QString& text)>;

    explicit AlgoRunContext(ProgressFn progress = {}) : m_progress(std::move(progress)) {}

    void Progress(double percent, const QString& text = QString()) const
    {
        if (m_progress)
            m_progress(percent, text);
    }
    // Records an error; returns false so algorithms can `return ctx.Fail(...)`.
    bool Fail(int code, const QString& message)
    {
        m_errorCode = code;
        m_errorMessage = message;
        return false;
    }
    int ErrorCode() const { return m_errorCode; }
    QString ErrorMessage() const { return m_errorMessage; }

private:
    ProgressFn m_progress;
    int m_errorCode = 0;
    QString m_errorMessage;
};

} // namespace Plugin
