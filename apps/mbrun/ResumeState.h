#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>

class QLockFile;

namespace Plugin {
class APCProcess;
}

namespace Mbrun {

// What earlier runs wrote, kept in a state file in each output folder, so that a
// resumed run can skip the steps whose outputs are still what they would write.
// Every run records what it wrote, so that any batch, however it ended, can be
// resumed. A resumed run holds the state file of each folder it touches until it
// ends, so that two resumed runs never run the same steps; every run takes a
// folder's state only for the moment it merges its notes in, so that runs of
// other rounds may write into the same folders at the same time. Memory stays small however many outputs a folder
// has: each entry is kept as a digest, and the file is merged and written through
// entry by entry. Used on the run's thread only.
class ResumeState
{
public:
    enum class Mode { Plan, Run, Shared, Record };

    static QString FileName() { return QStringLiteral(".mbrun-state.json"); }

    // modelPath is never written, whatever the outputs are called. A Run holds
    // the folders' state files; a Shared run is a Run whose folders another run
    // holds for it (the rounds of a resumed run side by side); a Plan only reads
    // them; a Record only adds to them.
    ResumeState(const QString& modelPath, Mode mode);
    ResumeState(const ResumeState&) = delete;
    ResumeState& operator=(const ResumeState&) = delete;
    // Lets go of the state files held.
    ~ResumeState();

    // Takes the state of each folder before a run starts, for the runs of its
    // rounds; false, with Conflict() set, when another run holds one.
    bool Hold(const QStringList& directories);
    // True when clone is an algorithm step all of whose outputs exist, are not
    // older than any file it reads, and are the files it wrote with the same
    // algorithm and parameters, as recorded, unchanged since. False, with
    // Conflict() set, when another run holds the state of one of its folders.
    bool IsUpToDate(Plugin::APCProcess* clone);
    // Notes the outputs of a step that succeeded; Flush() writes them.
    void Record(const QString& algorithm, const QString& executionText, const QStringList& outputs);
    // Writes the state files with notes not yet written, each replaced whole or
    // not at all, keeping what is there. Returns the files that could not be
    // written, with the reason; their notes are dropped.
    QStringList Flush();
    // Why a folder's state could not be taken: which run holds it. Empty while
    // every folder touched is held.
    const QString& Conflict() const { return m_conflict; }

private:
    struct Entry
    {
        QByteArray digest; // of the algorithm and its parameters
        qint64 size = -1;
        qint64 modified = -1; // ms since the epoch
    };
    struct Note
    {
        QString algorithm;
        QString parameters;
        qint64 size = -1;
        qint64 modified = -1;
    };
    struct Folder
    {
        QHash<QString, Entry> entries; // file name -> entry
        QHash<QString, Note> changed;  // noted since the last flush
        std::unique_ptr<QLockFile> lock;
        bool held = true; // false when another run holds the state
    };

    Folder& FolderOf(const QString& directory);
    void Hold(const QString& directory, Folder& folder);
    // Writes the state of one folder; false with the reason.
    bool WriteFolder(const QString& path, Folder& folder, QString* error);
    static QByteArray Digest(const QString& algorithm, const QString& parameters);
    // Calls take with each entry of a state file, in file order; false when the
    // file is missing, damaged or foreign.
    static bool ReadNotes(const QString& stateFile, const std::function<void(const QString&, const Note&)>& take);

    QString m_modelPath;
    Mode m_mode;
    std::map<QString, Folder> m_folders; // absolute directory -> its state
    QString m_conflict;
};

} // namespace Mbrun
