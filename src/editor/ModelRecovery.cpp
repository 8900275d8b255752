#include "editor/ModelRecovery.h"

#include "model/APCModel.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

#include <vector>

namespace Plugin {

namespace {

// Long enough that a burst of edits costs one write, short enough that a crash
// costs little.
constexpr int kKeepDelayMs = 2000;

// The locks of copies left by windows the program dropped unclosed: held until
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

ModelRecovery::ModelRecovery(APCModel* document, const QString& modelPath)
    : m_document(document), m_copy(CopyPath(modelPath)), m_saved(document->Snapshot())
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kKeepDelayMs);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Keep(); });
    if (!QDir().mkpath(Folder()))
        return;
    auto lock = std::make_unique<QLockFile>(m_copy + QStringLiteral(".lock"));
    lock->setStaleLockTime(0); // a live holder is never taken over; a dead one on this host is
    if (lock->tryLock(0))
        m_lock = std::move(lock);
}

ModelRecovery::~ModelRecovery()
{
    if (!IsActive() || m_discarded)
        return;
    Keep();
    if (m_hasCopy && !m_closed)
        keepLocked(std::move(m_lock));
}

QString ModelRecovery::Folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/recovery");
}

QString ModelRecovery::CopyPath(const QString& modelPath)
{
    // Named by the model, for a person looking in the folder, and told apart by
    // its whole path: models of one name live in many folders.
    const QFileInfo model(modelPath);
    const QByteArray key = QCryptographicHash::hash(QDir::cleanPath(model.absoluteFilePath()).toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return Folder() + QLatin1Char('/') + model.completeBaseName() + QLatin1Char('-') + QString::fromLatin1(key) + QStringLiteral(".apc");
}

bool ModelRecovery::LeftCopy(ModelSnapshot* content, QDateTime* written)
{
    if (!IsActive() || !QFileInfo::exists(m_copy))
        return false;
    APCModel copy;
    if (!copy.LoadFile(m_copy))
        return false; // unreadable: the window's own copy will take its place
    *content = copy.Snapshot();
    *written = QFileInfo(m_copy).lastModified();
    if (*content == m_saved) {
        QFile::remove(m_copy);
        return false;
    }
    // Until the window has changes of its own, the copy it left stays as it is.
    m_written = *content;
    m_hasCopy = true;
    return true;
}

void ModelRecovery::MarkSaved()
{
    m_saved = m_document->Snapshot();
    if (IsActive() && !m_discarded)
        Keep();
}

void ModelRecovery::Changed()
{
    if (IsActive() && !m_discarded && !m_timer.isActive())
        m_timer.start();
}

void ModelRecovery::DropLeftCopy()
{
    QFile::remove(m_copy);
    m_hasCopy = false;
}

void ModelRecovery::Discard()
{
    m_discarded = true;
    m_timer.stop();
    if (IsActive())
        QFile::remove(m_copy);
}

void ModelRecovery::Keep()
{
    m_timer.stop();
    const ModelSnapshot now = m_document->Snapshot();
    if (now == m_saved) {
        if (m_hasCopy)
            QFile::remove(m_copy);
        m_hasCopy = false;
        return;
    }
    if (m_hasCopy && now == m_written)
        return;
    // Written whole or not at all, as the model file is: a copy cut short by a
    // full disk never stands in for a good one.
    if (m_document->SaveFile(m_copy)) {
        m_written = now;
        m_hasCopy = true;
    }
}

} // namespace Plugin
