#include "ResumeState.h"

#include "StepFiles.h"

#include "engine/APCAlgo.h"
#include "model/WholeFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QThread>

#include <algorithm>

namespace Mbrun {

namespace {

// QLockFile's own wait first sleeps a tenth of a second: long next to a merge of a
// few milliseconds, which rounds ending together (side by side, or as the jobs of
// a workflow) each do.
bool lockSoon(QLockFile& lock, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    for (int pause = 1;; pause = std::min(2 * pause, 50)) {
        if (lock.tryLock(0))
            return true;
        if (lock.error() != QLockFile::LockFailedError || deadline.hasExpired())
            return false;
        QThread::msleep(pause);
    }
}

const QString kFormat = QStringLiteral("mbrun-state/1");
// The layout Flush writes: this head, one entry a line, the tail.
const QByteArray kHead = "{\n    \"format\": \"mbrun-state/1\",\n    \"outputs\": {\n";
const QByteArray kTail = "\n    }\n}\n";
const QByteArray kEntryIndent = "        ";
// How long a recording run waits for another to finish merging its notes.
constexpr int kMergeWaitMs = 3000;

qint64 modifiedMs(const QFileInfo& info)
{
    return info.lastModified().toMSecsSinceEpoch();
}

} // namespace

ResumeState::ResumeState(const QString& modelPath, Mode mode)
    : m_modelPath(QFileInfo(modelPath).absoluteFilePath()), m_mode(mode)
{
}

ResumeState::~ResumeState() = default;

QByteArray ResumeState::Digest(const QString& algorithm, const QString& parameters)
{
    return QCryptographicHash::hash(algorithm.toUtf8() + '\0' + parameters.toUtf8(), QCryptographicHash::Sha1);
}

bool ResumeState::ReadNotes(const QString& stateFile, const std::function<void(const QString&, const Note&)>& take)
{
    QFile file(stateFile);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    auto noteOf = [](const QJsonObject& o) {
        Note n;
        n.algorithm = o.value(QStringLiteral("algorithm")).toString();
        n.parameters = o.value(QStringLiteral("parameters")).toString();
        n.size = qint64(o.value(QStringLiteral("size")).toDouble(-1));
        n.modified = qint64(o.value(QStringLiteral("modified")).toDouble(-1));
        return n;
    };
    if (file.read(kHead.size()) == kHead) {
        // Entry by entry, so that a large state never sits in memory whole.
        while (!file.atEnd()) {
            QByteArray line = file.readLine().trimmed();
            if (line == "}")
                return file.readLine().trimmed() == "}";
            if (line.endsWith(','))
                line.chop(1);
            QJsonParseError error{};
            const QJsonObject entry = QJsonDocument::fromJson('{' + line + '}', &error).object();
            if (error.error != QJsonParseError::NoError || entry.size() != 1)
                return false;
            take(entry.begin().key(), noteOf(entry.begin().value().toObject()));
        }
        return false;
    }
    // Any other layout of the format, as an editor or an older run left it.
    file.seek(0);
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    if (root.value(QStringLiteral("format")).toString() != kFormat)
        return false; // a damaged or foreign file is as good as none: everything then runs again
    const QJsonObject outputs = root.value(QStringLiteral("outputs")).toObject();
    for (auto it = outputs.begin(); it != outputs.end(); ++it)
        take(it.key(), noteOf(it.value().toObject()));
    return true;
}

void ResumeState::Hold(const QString& directory, Folder& folder)
{
    // The folder is made as the step about to write there would make it.
    QDir().mkpath(directory);
    const QString stateFile = QDir(directory).filePath(FileName());
    folder.lock = std::make_unique<QLockFile>(stateFile + QStringLiteral(".lock"));
    folder.lock->setStaleLockTime(0); // a live holder is never taken over; a dead one on this host is
    if (folder.lock->tryLock(0))
        return;
    if (folder.lock->error() != QLockFile::LockFailedError) {
        // No lock file can be made there: nor can the state, which Flush then says.
        folder.lock.reset();
        return;
    }
    folder.held = false;
    qint64 pid = 0;
    QString host, application;
    folder.lock->getLockInfo(&pid, &host, &application);
    folder.lock.reset();
    if (m_conflict.isEmpty())
        m_conflict = QStringLiteral("mbrun: the resume state %1 is in use by another run: process %2 on %3\n")
                         .arg(stateFile)
                         .arg(pid)
                         .arg(host);
}

ResumeState::Folder& ResumeState::FolderOf(const QString& directory)
{
    auto it = m_folders.find(directory);
    if (it != m_folders.end())
        return it->second;
    Folder& folder = m_folders[directory];
    if (m_mode == Mode::Record)
        return folder; // notes are merged into the file as it is when they are written
    if (m_mode == Mode::Run)
        Hold(directory, folder);
    if (m_mode == Mode::Shared)
        QDir().mkpath(directory); // as Hold would
    const bool read = ReadNotes(QDir(directory).filePath(FileName()), [&folder](const QString& name, const Note& n) {
        folder.entries.insert(name, Entry{Digest(n.algorithm, n.parameters), n.size, n.modified});
    });
    if (!read)
        folder.entries.clear();
    return folder;
}

bool ResumeState::Hold(const QStringList& directories)
{
    for (const QString& directory : directories)
        FolderOf(QFileInfo(directory).absoluteFilePath());
    return m_conflict.isEmpty();
}

bool ResumeState::IsUpToDate(Plugin::APCProcess* clone)
{
    auto* algo = dynamic_cast<Plugin::APCAlgo*>(clone);
    if (!algo)
        return false; // a nested model's outputs are its own steps' business
    const StepFiles files(clone);
    if (files.Outputs().isEmpty())
        return false;
    // Every folder the step writes into is taken before it can run.
    for (const QString& path : files.Outputs())
        if (!FolderOf(QFileInfo(path).absolutePath()).held)
            return false;
    const QByteArray digest = Digest(algo->GetProcessName(), algo->ExecutionText());
    qint64 oldestOutput = -1;
    for (const QString& path : files.Outputs()) {
        const QFileInfo out(path);
        if (!out.isFile())
            return false;
        const Folder& folder = FolderOf(out.absolutePath());
        auto e = folder.entries.constFind(out.fileName());
        if (e == folder.entries.constEnd() || e->digest != digest || e->size != out.size() ||
            e->modified != modifiedMs(out))
            return false;
        oldestOutput = oldestOutput < 0 ? e->modified : qMin(oldestOutput, e->modified);
    }
    for (const QString& path : files.ExistingInputs())
        if (modifiedMs(QFileInfo(path)) > oldestOutput)
            return false;
    return true;
}

void ResumeState::Record(const QString& algorithm, const QString& executionText, const QStringList& outputs)
{
    for (const QString& path : outputs) {
        const QFileInfo out(path);
        if (!out.isFile())
            continue;
        Folder& folder = FolderOf(out.absolutePath());
        if (!folder.held)
            continue; // another run's folder: its state is that run's
        folder.changed.insert(out.fileName(), Note{algorithm, executionText, out.size(), modifiedMs(out)});
    }
}

bool ResumeState::WriteFolder(const QString& path, Folder& folder, QString* error)
{
    auto entryText = [](const QString& name, const Note& n) {
        QJsonObject o;
        o.insert(QStringLiteral("algorithm"), n.algorithm);
        o.insert(QStringLiteral("parameters"), n.parameters);
        o.insert(QStringLiteral("size"), double(n.size));
        o.insert(QStringLiteral("modified"), double(n.modified));
        QJsonObject wrapped;
        wrapped.insert(name, o);
        const QByteArray text = QJsonDocument(wrapped).toJson(QJsonDocument::Compact);
        return kEntryIndent + text.mid(1, text.size() - 2); // "name":{...}
    };
    // Returns 1 when written, 0 when the file could not be, -1 when the old one
    // turned out damaged on the way: then it is written again without it.
    auto write = [&](bool keepOld) {
        Plugin::WholeFile out(path);
        bool first = true;
        auto put = [&](const QString& name, const Note& n) {
            out.Write((first ? QByteArray() : QByteArrayLiteral(",\n")) + entryText(name, n));
            first = false;
        };
        out.Open();
        out.Write(kHead);
        if (keepOld && QFileInfo::exists(path)) {
            const bool read = ReadNotes(path, [&](const QString& name, const Note& n) {
                if (!folder.changed.contains(name))
                    put(name, n);
            });
            if (!read)
                return -1;
        }
        for (auto it = folder.changed.constBegin(); it != folder.changed.constEnd(); ++it)
            put(it.key(), it.value());
        out.Write(kTail);
        if (out.Commit())
            return 1;
        *error = out.ErrorString();
        return 0;
    };
    int written = write(true);
    if (written < 0)
        written = write(false);
    return written > 0;
}

QStringList ResumeState::Flush()
{
    QStringList failures;
    for (auto& [directory, folder] : m_folders) {
        if (folder.changed.isEmpty() || !folder.held)
            continue;
        const QString path = QDir(directory).filePath(FileName());
        QString error;
        // Runs of other rounds may merge into the same file: each takes it in turn.
        QLockFile merging(path + QStringLiteral(".merging"));
        merging.setStaleLockTime(0);
        if (!lockSoon(merging, kMergeWaitMs) && merging.error() == QLockFile::LockFailedError) {
            qint64 pid = 0;
            QString host, application;
            merging.getLockInfo(&pid, &host, &application);
            failures << QStringLiteral("%1: another run has been merging into it for %2 s: process %3 on %4")
                            .arg(path)
                            .arg(kMergeWaitMs / 1000)
                            .arg(pid)
                            .arg(host);
            folder.changed.clear();
            continue;
        }
        if (QFileInfo(path).absoluteFilePath() == m_modelPath)
            failures << QStringLiteral("%1: it is the model file being run").arg(path);
        else if (!WriteFolder(path, folder, &error))
            failures << QStringLiteral("%1: %2").arg(path, error);
        else if (m_mode != Mode::Record) // a recording run never asks what is up to date
            for (auto it = folder.changed.constBegin(); it != folder.changed.constEnd(); ++it)
                folder.entries.insert(it.key(), Entry{Digest(it->algorithm, it->parameters), it->size, it->modified});
        // Said once on failure: those steps simply run again next time.
        folder.changed.clear();
    }
    return failures;
}

} // namespace Mbrun
