#include "engine/APCLog.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace Plugin {

namespace {

const QString kBanner = QStringLiteral("=============================");

QString line(const char* word, const QString& name)
{
    return QLatin1Char('\n') + QCoreApplication::translate("APCLog", word) + QLatin1Char(' ') + name + QLatin1Char('\n');
}

} // namespace

void APCLog::Write(const QString& text) { m_logText += text; }
void APCLog::WriteError(const QString& text) { m_errorText += text; }

void APCLog::LogStart(const QString& name, const QString& parameters)
{
    QString text = QCoreApplication::translate("APCLog", "Start the model:") + QLatin1Char(' ') + name + QLatin1Char('\n');
    if (!parameters.isEmpty())
        text += QCoreApplication::translate("APCLog", "Parameter: ") + parameters + QLatin1Char('\n');
    Write(text);
}

void APCLog::LogStep(const APCLogRecord& r)
{
    QString block;
    block.reserve(256 + r.parameters.size());
    block += QLatin1Char('\n') + kBanner + QCoreApplication::translate("APCLog", "Start") + QLatin1Char(' ') + r.description + kBanner + QLatin1Char('\n');
    block += QCoreApplication::translate("APCLog", "Algorithm:") + QLatin1Char(' ') + r.name + QLatin1Char('\n');
    block += QCoreApplication::translate("APCLog", "Description:") + QLatin1Char(' ') + r.description + QLatin1Char('\n');
    block += QCoreApplication::translate("APCLog", "Parameter:") + QLatin1Char(' ') + r.parameters + QLatin1Char('\n');
    if (r.succeeded) {
        block += QCoreApplication::translate("APCLog", "Result of execution:") + QLatin1Char(' ') + QCoreApplication::translate("APCLog", "Succeed") + QLatin1Char('\n');
    } else {
        block += QCoreApplication::translate("APCLog", "Result of execution:") + QLatin1Char(' ') + QCoreApplication::translate("APCLog", "Fail") + QLatin1Char('\n');
        block += QCoreApplication::translate("APCLog", "Error number:") + QLatin1Char(' ') + QString::number(r.errorCode) + QLatin1Char('\n');
        block += QCoreApplication::translate("APCLog", "Error message:") + QLatin1Char(' ') + r.errorMessage + QLatin1Char('\n');
    }
    block += kBanner + QCoreApplication::translate("APCLog", "End") + QLatin1Char(' ') + r.description + kBanner + QLatin1Char('\n');
    if (r.errorCode != 0) {
        ++m_failCount;
        WriteError(block);
    } else {
        ++m_succeedCount;
    }
    Write(block);
}

void APCLog::LogPause(const QString& name) { Write(line(QT_TRANSLATE_NOOP("APCLog", "Pause the model:"), name)); }
void APCLog::LogContinue(const QString& name) { Write(line(QT_TRANSLATE_NOOP("APCLog", "Continue the model:"), name)); }
void APCLog::LogEnd(const QString& name) { Write(line(QT_TRANSLATE_NOOP("APCLog", "End the model:"), name)); }

QString APCLog::SummaryText(int succeeded, int failed)
{
    return QLatin1Char('\n') + kBanner + QCoreApplication::translate("APCLog", "Generate:") + QLatin1Char(' ') + QCoreApplication::translate("APCLog", "Succeed:") + QLatin1Char(' ') +
           QString::number(succeeded) + QStringLiteral(", ") + QCoreApplication::translate("APCLog", "Fail:") + QLatin1Char(' ') + QString::number(failed) +
           QLatin1Char(' ') + kBanner + QLatin1Char('\n');
}

bool APCLog::AddSummaryCounts(const QString& text, int* succeeded, int* failed)
{
    // The summary's own text with its two numbers left open.
    static const QRegularExpression summary(QRegularExpression::escape(SummaryText(111111111, 222222222))
                                                .replace(QStringLiteral("111111111"), QStringLiteral("(\\d+)"))
                                                .replace(QStringLiteral("222222222"), QStringLiteral("(\\d+)")));
    bool found = false;
    for (auto it = summary.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        *succeeded += m.captured(1).toInt();
        *failed += m.captured(2).toInt();
        found = true;
    }
    return found;
}

void APCLog::LogSummary()
{
    Write(SummaryText(m_succeedCount, m_failCount));
    m_succeedCount = 0;
    m_failCount = 0;
}

} // namespace Plugin
