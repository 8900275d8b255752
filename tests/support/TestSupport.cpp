#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <csignal>
#include <sys/resource.h>

namespace TestSupport {

bool WaitUntil(const std::function<bool()>& done, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return done();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::usleep(200);
    }
    return true;
}

QByteArray ReadAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool WriteAll(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

QString MbrunPath()
{
    return QCoreApplication::applicationDirPath() + "/mbrun";
}

Outcome Mbrun(const QStringList& args)
{
    QProcess p;
    p.start(MbrunPath(), args);
    const bool ended = p.waitForFinished(120000);
    if (!ended) {
        p.kill(); // a hung run must not pass for whatever code it has not given yet
        p.waitForFinished();
    }
    const bool normal = ended && p.exitStatus() == QProcess::NormalExit;
    return {normal ? p.exitCode() : -2, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

FileSizeLimit::FileSizeLimit(qint64 bytes)
{
    m_handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_soft = limit.rlim_cur;
    limit.rlim_cur = rlim_t(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
    m_hadGcovPrefix = qEnvironmentVariableIsSet("GCOV_PREFIX");
    m_gcovPrefix = qgetenv("GCOV_PREFIX");
    qputenv("GCOV_PREFIX", QDir::temp().filePath(QStringLiteral("mb-full-disk-coverage")).toLocal8Bit());
}

FileSizeLimit::~FileSizeLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = rlim_t(m_soft);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, m_handler);
    if (m_hadGcovPrefix)
        qputenv("GCOV_PREFIX", m_gcovPrefix);
    else
        qunsetenv("GCOV_PREFIX");
}

} // namespace TestSupport
