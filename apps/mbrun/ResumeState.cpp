#include "ResumeState.h"

#include "StepFiles.h"

#include "engine/APCAlgo.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace Mbrun {

namespace {

const QString kFormat = QStringLiteral("mbrun-state/1");

qint64 modifiedMs(const QFileInfo& info)
{
    return info.lastModified().toMSecsSinceEpoch();
}

} // namespace

ResumeState::ResumeState(const QString& modelPath) : m_modelPath(QFileInfo(modelPath).absoluteFilePath()) {}

QHash<QString, ResumeState::Entry> ResumeState::Read(const QString& stateFile)
{
    QHash<QString, Entry> entries;
    QFile file(stateFile);
    if (!file.open(QIODevice::ReadOnly))
        return entries;
    // A damaged or foreign file is as good as none: everything then runs again.
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    if (root.value(QStringLiteral("format")).toString() != kFormat)
        return entries;
    const QJsonObject outputs = root.value(QStringLiteral("outputs")).toObject();
    for (auto it = outputs.begin(); it != outputs.end(); ++it) {
        const QJsonObject o = it.value().toObject();
        Entry e;
        e.algorithm = o.value(QStringLiteral("algorithm")).toString();
        e.parameters = o.value(QStringLiteral("parameters")).toString();
        e.size = qint64(o.value(QStringLiteral("size")).toDouble(-1));
        e.modified = qint64(o.value(QStringLiteral("modified")).toDouble(-1));
        entries.insert(it.key(), e);
    }
    return entries;
}

ResumeState::Folder& ResumeState::FolderOf(const QString& directory)
{
    auto it = m_folders.find(directory);
    if (it == m_folders.end()) {
        Folder folder;
        folder.entries = Read(QDir(directory).filePath(FileName()));
        it = m_folders.insert(directory, folder);
    }
    return it.value();
}

bool ResumeState::IsUpToDate(Plugin::APCProcess* clone)
{
    auto* algo = dynamic_cast<Plugin::APCAlgo*>(clone);
    if (!algo)
        return false; // a nested model's outputs are its own steps' business
    const StepFiles files(clone);
    if (files.Outputs().isEmpty())
        return false;
    const QString parameters = algo->ExecutionText();
    qint64 oldestOutput = -1;
    for (const QString& path : files.Outputs()) {
        const QFileInfo out(path);
        if (!out.isFile())
            return false;
        const Folder& folder = FolderOf(out.absolutePath());
        auto e = folder.entries.constFind(out.fileName());
        if (e == folder.entries.constEnd() || e->algorithm != algo->GetProcessName() || e->parameters != parameters ||
            e->size != out.size() || e->modified != modifiedMs(out))
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
        Entry e;
        e.algorithm = algorithm;
        e.parameters = executionText;
        e.size = out.size();
        e.modified = modifiedMs(out);
        folder.entries.insert(out.fileName(), e);
        folder.changed.insert(out.fileName());
    }
}

QStringList ResumeState::Flush()
{
    QStringList failures;
    for (auto it = m_folders.begin(); it != m_folders.end(); ++it) {
        Folder& folder = it.value();
        if (folder.changed.isEmpty())
            continue;
        const QString path = QDir(it.key()).filePath(FileName());
        if (QFileInfo(path).absoluteFilePath() == m_modelPath) {
            failures << QStringLiteral("%1: it is the model file being run").arg(path);
            folder.changed.clear();
            continue;
        }
        // Another run may have written here since we read the file: keep its notes.
        QHash<QString, Entry> merged = Read(path);
        for (const QString& name : folder.changed)
            merged.insert(name, folder.entries.value(name));
        QJsonObject outputs;
        for (auto e = merged.constBegin(); e != merged.constEnd(); ++e) {
            QJsonObject o;
            o.insert(QStringLiteral("algorithm"), e->algorithm);
            o.insert(QStringLiteral("parameters"), e->parameters);
            o.insert(QStringLiteral("size"), double(e->size));
            o.insert(QStringLiteral("modified"), double(e->modified));
            outputs.insert(e.key(), o);
        }
        QJsonObject root;
        root.insert(QStringLiteral("format"), kFormat);
        root.insert(QStringLiteral("outputs"), outputs);
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(root).toJson(QJsonDocument::Indented)) < 0 ||
            !file.commit()) {
            // Said once: those steps simply run again next time.
            failures << QStringLiteral("%1: %2").arg(path, file.errorString());
            folder.changed.clear();
            continue;
        }
        folder.entries = merged;
        folder.changed.clear();
    }
    return failures;
}

} // namespace Mbrun
