#include "editor/RecoveryCopy.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QDateTime>
#include <QLocale>
#include <QLockFile>
#include <QMessageBox>
#include <QStandardPaths>

#include <vector>

namespace Plugin {

namespace {

// The locks of copies left by keepers the program dropped unclosed: held until
// the application ends.
std::vector<std::unique_ptr<QLockFile>>& keptLocks()
{
    static std::vector<std::unique_ptr<QLockFile>> locks;
    return locks;
}

void keepLocked(std::unique_ptr<QLockFile> lock)
{
    if (keptLocks().empty())
        qAddPostRoutine([] { keptLocks().clear(); });
    keptLocks().push_back(std::move(lock));
}

} // namespace

RecoveryCopy::RecoveryCopy(const QString& filePath, std::function<void()> keep) : m_path(PathFor(filePath))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(2000);
    QObject::connect(&m_timer, &QTimer::timeout, std::move(keep));
    if (!QDir().mkpath(Folder()))
        return;
    auto lock = std::make_unique<QLockFile>(m_path + QStringLiteral(".lock"));
    lock->setStaleLockTime(0); // a live holder is never taken over; a dead one on this host is
    if (lock->tryLock(0))
        m_lock = std::move(lock);
}

RecoveryCopy::~RecoveryCopy()
{
    if (IsActive() && !m_closed && QFileInfo::exists(m_path))
        keepLocked(std::move(m_lock));
}

QString RecoveryCopy::Folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/recovery");
}

QString RecoveryCopy::PathFor(const QString& filePath)
{
    // Named by the file, for a person looking in the folder, and told apart by
    // its whole path: models of one name live in many folders.
    const QFileInfo file(filePath);
    const QByteArray key = QCryptographicHash::hash(QDir::cleanPath(file.absoluteFilePath()).toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return Folder() + QLatin1Char('/') + file.completeBaseName() + QLatin1Char('-') + QString::fromLatin1(key) + QLatin1Char('.') + file.suffix();
}

bool RecoveryCopy::Exists() const
{
    return IsActive() && QFileInfo::exists(m_path);
}

bool RecoveryCopy::Write(const std::function<bool(const QString&)>& save)
{
    return IsActive() && save(m_path);
}

void RecoveryCopy::KeepSoon()
{
    if (IsActive() && !m_timer.isActive())
        m_timer.start();
}

bool RecoveryCopy::AskToTakeUp(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::Question, QCoreApplication::translate("RecoveryCopy", "Recover changes"), text,
                    QMessageBox::Yes | QMessageBox::No, parent);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

QString RecoveryCopy::WrittenAt() const
{
    return QLocale().toString(QFileInfo(m_path).lastModified(), QLocale::ShortFormat);
}

void RecoveryCopy::Remove()
{
    if (IsActive())
        QFile::remove(m_path);
}

} // namespace Plugin
