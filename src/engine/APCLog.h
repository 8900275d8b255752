#pragma once

#include "engine/APCLogRecord.h"

#include <QString>

namespace Plugin {

// The report of runs: all text, the failed blocks, and step counters. Subclasses
// show the same text elsewhere by overriding Write and WriteError.
class APCLog
{
public:
    APCLog() = default;
    virtual ~APCLog() = default;

    virtual void Write(const QString& text);
    virtual void WriteError(const QString& text);

    void LogStart(const QString& name, const QString& parameters);
    // One block per step; a failed block goes to the error text first.
    void LogStep(const APCLogRecord& record);
    void LogPause(const QString& name);
    void LogContinue(const QString& name);
    void LogEnd(const QString& name);
    // Writes the counts since the last summary and resets them.
    void LogSummary();
    // The summary's text for these counts.
    static QString SummaryText(int succeeded, int failed);
    // Adds the counts of every summary in text; false when it holds none.
    static bool AddSummaryCounts(const QString& text, int* succeeded, int* failed);

    QString GetLogText() const { return m_logText; }
    QString GetErrorText() const { return m_errorText; }
    int GetSucceedCount() const { return m_succeedCount; }
    int GetFailCount() const { return m_failCount; }

private:
    QString m_logText;
    QString m_errorText;
    int m_succeedCount = 0;
    int m_failCount = 0;
};

} // namespace Plugin
