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

// A full disk without root: while one is alive no file of this process, nor of a
// program it starts meanwhile, grows past bytes; such a write fails (EFBIG)
// instead of killing the process. Those programs keep their coverage counts apart
// (GCOV_PREFIX), which would otherwise be cut short for every later run.
// Ended, the limit, the signal and the environment are as before.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes);
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit();

private:
    unsigned long long m_soft = 0;
    void (*m_handler)(int) = nullptr;
    QByteArray m_gcovPrefix;
    bool m_hadGcovPrefix = false;
};

} // namespace TestSupport
