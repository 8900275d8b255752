#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace TestSupport {

// Spins the calling thread's event loop until done() holds or timeoutMs passes.
// Returns done()'s last answer.
bool WaitUntil(const std::function<bool()>& done, int timeoutMs = 10000);

QByteArray ReadAll(const QString& path);
bool WriteAll(const QString& path, const QByteArray& bytes);

} // namespace TestSupport
