#include "engine/APCLog.h"

#include <QCoreApplication>

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

void APCLog::LogSummary()
{
    Write(QLatin1Char('\n') + kBanner + tr("Generate:") + QLatin1Char(' ') + tr("Succeed:") + QLatin1Char(' ') +
          QString::number(m_succeedCount) + QStringLiteral(", ") + tr("Fail:") + QLatin1Char(' ') +
          QString::number(m_failCount) + QLatin1Char(' ') + kBanner + QLatin1Char('\n'));
    m_succeedCount = 0;
    m_failCount = 0;
}

} // namespace Plugin
