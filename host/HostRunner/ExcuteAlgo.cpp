#include "HostRunner/ExcuteAlgo.h"

#include "HostCatalog/AlgoRunContext.h"
#include "HostCatalog/AlgorithmRegistry.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <algorithm>
#include <cstring>
#include <exception>

namespace HostRunner {

namespace {

// The whole message of the last run on this thread; the record holds what fits.
thread_local QByteArray t_wholeMessage;

void writeError(RunRecord* record, int code, const QString& message)
{
    record->errorCode = code;
    t_wholeMessage = message.toUtf8();
    const QByteArray& bytes = t_wholeMessage;
    size_t n = std::min<size_t>(size_t(bytes.size()), sizeof(record->errorMessage) - 1);
    // A cut record ends on a whole character.
    while (n < size_t(bytes.size()) && n > 0 && (uchar(bytes[int(n)]) & 0xC0) == 0x80)
        --n;
    std::memcpy(record->errorMessage, bytes.constData(), n);
    record->errorMessage[n] = '\0';
}

} // namespace

const char* ExcuteAlgoMessage()
{
    return t_wholeMessage.constData();
}

bool CheckParameters(const QString& name, const QString& parametersJson, QString* parameter, QString* reason)
{
    const Plugin::AlgorithmRegistry::CheckFn check = Plugin::AlgorithmRegistry::Instance().Checker(name);
    if (!check)
        return true;
    const QJsonDocument doc = QJsonDocument::fromJson(parametersJson.toUtf8());
    if (!doc.isObject())
        return true; // the run says why the text does not read
    QStringList problem;
    try {
        problem = check(doc.object());
    } catch (...) {
        return true; // the run meets it again and reports it
    }
    if (problem.size() < 2)
        return true;
    if (parameter)
        *parameter = problem[0];
    if (reason)
        *reason = problem[1];
    return false;
}

int ExcuteAlgo(const char* name, const char* parameters, RunRecord* record)
{
    if (!record)
        return 0;
    writeError(record, 0, QString());

    const QString algoName = QString::fromLocal8Bit(name ? name : "");
    Plugin::AlgorithmRegistry::RunFn run = Plugin::AlgorithmRegistry::Instance().Runner(algoName);
    if (!run) {
        writeError(record, 1, QStringLiteral("Unknown algorithm: %1").arg(algoName));
        return 0;
    }

    QJsonParseError parseError{};
    const QJsonDocument doc = QJsonDocument::fromJson(QByteArray(parameters ? parameters : ""), &parseError);
    if (parseError.error != QJsonParseError::NoError || !doc.isObject()) {
        writeError(record, 2, QStringLiteral("Invalid parameter text for %1: %2")
                                  .arg(algoName, parseError.errorString()));
        return 0;
    }

    ProgressCallback callback = record->callback;
    void* userData = record->userData;
    Plugin::AlgoRunContext ctx([callback, userData](double percent, const QString& text) {
        if (callback) {
            const QByteArray bytes = text.toUtf8();
            callback(percent, bytes.constData(), userData);
        }
    });

    bool ok = false;
    try {
        ok = run(doc.object(), ctx);
    } catch (const std::exception& e) {
        ctx.Fail(3, QStringLiteral("%1 failed: %2").arg(algoName, QString::fromUtf8(e.what())));
    } catch (...) {
        ctx.Fail(3, QStringLiteral("%1 failed with an unexpected error").arg(algoName));
    }
    if (!ok && ctx.ErrorCode() == 0)
        ctx.Fail(4, QStringLiteral("%1 failed").arg(algoName));
    writeError(record, ok ? 0 : ctx.ErrorCode(), ok ? QString() : ctx.ErrorMessage());
    return ok ? 1 : 0;
}

} // namespace HostRunner
