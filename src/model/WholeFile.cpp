#include "model/WholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace Plugin {

namespace {

QString systemReason(int error = errno)
{
    return QString::fromLocal8Bit(std::strerror(error));
}


// fsync, which may be the first to hear of a full disk (delayed allocation,
// network file systems).
bool syncToDisk(int handle)
{
    return handle < 0 || ::fsync(handle) == 0 || errno == EINVAL || errno == EROFS;
}

} // namespace

QString WholeFile::ReasonOf(const QFileDevice& file, int error)
{
    const QString said = file.errorString();
    if (error != 0 && (said.isEmpty() || said == QLatin1String("Unknown error")))
        return systemReason(error);
    return said;
}

WholeFile::WholeFile(const QString& path) : m_path(path) {}

WholeFile::~WholeFile()
{
    if (m_file)
        m_file->cancelWriting(); // the temporary file goes with m_file
}

bool WholeFile::Fail(const QString& reason)
{
    if (m_error.isEmpty())
        m_error = reason.isEmpty() ? QStringLiteral("Unknown error") : reason;
    if (m_file) {
        m_file->cancelWriting();
        m_file.reset();
    }
    m_text.clear();
    return false;
}

bool WholeFile::Open()
{
    m_file = std::make_unique<QSaveFile>(m_path);
    if (m_file->open(QIODevice::WriteOnly))
        return true;
    const QString reason = m_file->errorString();
    m_file.reset();
    const QFileInfo info(m_path);
    if (info.isFile() && info.isWritable() && !QFileInfo(info.absolutePath()).isWritable()) {
        m_inPlace = true;
        return true;
    }
    return Fail(reason);
}

bool WholeFile::Write(const QByteArray& bytes)
{
    if (!m_error.isEmpty())
        return false;
    if (m_inPlace) {
        m_text += bytes;
        return true;
    }
    if (!m_file)
        return Fail(QStringLiteral("The file is not open"));
    errno = 0;
    if (m_file->write(bytes) != bytes.size())
        return Fail(ReasonOf(*m_file, errno));
    return true;
}

bool WholeFile::Commit()
{
    if (!m_error.isEmpty())
        return false;
    if (m_inPlace)
        return CommitInPlace();
    if (!m_file)
        return Fail(QStringLiteral("The file is not open"));
    // QSaveFile's own commit renames even when its closing flush failed: the
    // flush and the sync are checked here, before it.
    errno = 0;
    if (!m_file->flush() || m_file->error() != QFileDevice::NoError)
        return Fail(ReasonOf(*m_file, errno));
    if (!syncToDisk(m_file->handle()))
        return Fail(systemReason());
    if (!m_file->commit())
        return Fail(m_file->errorString());
    m_file.reset();
    return true;
}

bool WholeFile::CommitInPlace()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return Fail(file.errorString());
    const QByteArray old = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Fail(file.errorString());
    // Written over the old bytes without truncating first, so that what the old
    // text held stays allocated and can be written back if the rest finds no room.
    errno = 0;
    const bool written = file.seek(0) && file.write(m_text) == m_text.size() && file.resize(m_text.size()) &&
                         syncToDisk(file.handle());
    if (written) {
        m_text.clear();
        return true;
    }
    const QString reason = ReasonOf(file, errno);
    file.seek(0);
    file.write(old);
    file.resize(old.size());
    syncToDisk(file.handle());
    return Fail(reason);
}

bool WholeFile::Save(const QString& path, const QByteArray& bytes, QString* error)
{
    WholeFile file(path);
    const bool saved = file.Open() && file.Write(bytes) && file.Commit();
    if (!saved && error)
        *error = file.ErrorString();
    return saved;
}

bool WholeFile::Copy(const QString& source, const QString& target, QString* error)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        if (error)
            *error = in.errorString();
        return false;
    }
    WholeFile out(target);
    bool copied = out.Open();
    while (copied && !in.atEnd()) {
        const QByteArray chunk = in.read(1 << 16);
        if (chunk.isEmpty()) {
            if (in.error() != QFileDevice::NoError)
                copied = out.Fail(in.errorString());
            break;
        }
        copied = out.Write(chunk);
    }
    copied = copied && out.Commit();
    if (!copied && error)
        *error = out.ErrorString();
    return copied;
}

} // namespace Plugin
