#include "engine/APCLog.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace Plugin {

namespace {

const QString kBanner = QStringLiteral("=============================");

QString tr(const char* text)
{
    return QCoreApplication::translate("APCLog", text);
}

QString line(const char* word, const QString& name)
{
    return QLatin1Char('\n') + tr(word) + QLatin1Char(' ') + name + QLatin1Char('\n');
}

} // namespace

void APCLog::Write(const QString& text) { m_logText += text; }
void APCLog::WriteError(const QString& text) { m_errorText += text; }

void APCLog::LogStart(const QString& name, const QString& parameters)
{
    QString text = tr("Start the model:") + QLatin1Char(' ') + name + QLatin1Char('\n');
    if (!parameters.isEmpty())
        text += tr("Parameter: ") + parameters + QLatin1Char('\n');
    Write(text);
}

void APCLog::LogStep(const APCLogRecord& r)
{
    QString block;
    block.reserve(256 + r.parameters.size());
    block += QLatin1Char('\n') + kBanner + tr("Start") + QLatin1Char(' ') + r.description + kBanner + QLatin1Char('\n');
    block += tr("Algorithm:") + QLatin1Char(' ') + r.name + QLatin1Char('\n');
    block += tr("Description:") + QLatin1Char(' ') + r.description + QLatin1Char('\n');
    block += tr("Parameter:") + QLatin1Char(' ') + r.parameters + QLatin1Char('\n');
    if (r.succeeded) {
        block += tr("Result of execution:") + QLatin1Char(' ') + tr("Succeed") + QLatin1Char('\n');
    } else {
        block += tr("Result of execution:") + QLatin1Char(' ') + tr("Fail") + QLatin1Char('\n');
        block += tr("Error number:") + QLatin1Char(' ') + QString::number(r.errorCode) + QLatin1Char('\n');
        block += tr("Error message:") + QLatin1Char(' ') + r.errorMessage + QLatin1Char('\n');
    }
    block += kBanner + tr("End") + QLatin1Char(' ') + r.description + kBanner + QLatin1Char('\n');
    if (r.errorCode != 0) {
        ++m_failCount;
        WriteError(block);
    } else {
        ++m_succeedCount;
    }
    Write(block);
}

void APCLog::LogPause(const QString& name) { Write(line("Pause the model:", name)); }
void APCLog::LogContinue(const QString& name) { Write(line("Continue the model:", name)); }
void APCLog::LogEnd(const QString& name) { Write(line("End the model:", name)); }

QString APCLog::SummaryText(int succeeded, int failed)
{
    return QLatin1Char('\n') + kBanner + tr("Generate:") + QLatin1Char(' ') + tr("Succeed:") + QLatin1Char(' ') +
           QString::number(succeeded) + QStringLiteral(", ") + tr("Fail:") + QLatin1Char(' ') + QString::number(failed) +
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
