#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Plugin {
class APCProcess;
}

namespace Mbrun {

// What earlier runs wrote, kept in a state file in each output folder, so that a
// resumed run can skip the steps whose outputs are still what they would write.
// Used on the run's thread only.
class ResumeState
{
public:
    static QString FileName() { return QStringLiteral(".mbrun-state.json"); }

    // modelPath is never written, whatever the outputs are called.
    explicit ResumeState(const QString& modelPath);

    // True when clone is an algorithm step all of whose outputs exist, are not
    // older than any file it reads, and are the files it wrote with the same
    // algorithm and parameters, as recorded, unchanged since.
    bool IsUpToDate(Plugin::APCProcess* clone);
    // Notes the outputs of a step that succeeded; Flush() writes them.
    void Record(const QString& algorithm, const QString& executionText, const QStringList& outputs);
    // Writes the state files with notes not yet written, each replaced whole or
    // not at all, merged with what other runs wrote there meanwhile. Returns the
    // files that could not be written, with the reason; their notes are dropped.
    QStringList Flush();

private:
    struct Entry
    {
        QString algorithm;
        QString parameters;
        qint64 size = -1;
        qint64 modified = -1; // ms since the epoch
    };
    struct Folder
    {
        QHash<QString, Entry> entries; // file name -> entry
        QSet<QString> changed;         // file names noted since the last flush
    };

    Folder& FolderOf(const QString& directory);
    static QHash<QString, Entry> Read(const QString& stateFile);

    QString m_modelPath;
    QHash<QString, Folder> m_folders; // absolute directory -> its state
};

} // namespace Mbrun
