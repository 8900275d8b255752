#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace TestSupport {

// Spins the calling thread's event loop until done() holds or timeoutMs passes.
// Returns done()'s last answer.
bool WaitUntil(const std::function<bool()>& done, int timeoutMs = 10000);

QByteArray ReadAll(const QString& path);
bool WriteAll(const QString& path, const QByteArray& bytes);

// The mbrun built beside the test programs, and what one run of it said.
QString MbrunPath();
struct Outcome
{
    int code = -1; // -2 when it crashed or did not end in time
    QString out;
    QString err;
};
Outcome Mbrun(const QStringList& args);

} // namespace TestSupport
