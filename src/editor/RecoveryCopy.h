#pragma once

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class QLockFile;
class QWidget;

namespace Plugin {

// A copy, in the user's data folder, of what one of our files lacks (a model's
// unsaved edits, the tool box's unsaved tree), so that a crash, a killed process
// or a save that failed costs little. One copy per file, locked while its keeper
// lives. A copy is offered when the file next opens once its keeper is gone:
// closed by the user, or its process ended. A keeper the program dropped without
// a close (at its teardown) keeps the copy locked until the application ends, so
// that the next session offers it.
class RecoveryCopy
{
public:
    // Inactive (it keeps nothing) when the folder cannot be made or a live
    // keeper, of this process or another, holds the copy of filePath. keep
    // writes the copy when KeepSoon's delay is over.
    RecoveryCopy(const QString& filePath, std::function<void()> keep);
    ~RecoveryCopy();
    RecoveryCopy(const RecoveryCopy&) = delete;
    RecoveryCopy& operator=(const RecoveryCopy&) = delete;

    bool IsActive() const { return m_lock != nullptr; }
    QString Path() const { return m_path; }
    // True when active and a copy is on the disk: one a keeper left, until
    // written or removed.
    bool Exists() const;
    // Writes the copy through save, which writes the file it is given whole or
    // not at all; false when inactive or the write failed.
    bool Write(const std::function<bool(const QString&)>& save);
    void Remove();
    // The user closed the keeper.
    void Closed() { m_closed = true; }

    // Calls keep two seconds after the first change of a burst: one write for
    // many changes, and little lost to a crash.
    void KeepSoon();
    bool KeepPending() const { return m_timer.isActive(); }
    void CancelKeep() { m_timer.stop(); }
    // Asks, under the title "Recover changes", whether to take up the copy an
    // earlier keeper left; text says what of and may name WrittenAt(). Taking it
    // up is the default and the Escape answer: it is the one that loses nothing.
    static bool AskToTakeUp(QWidget* parent, const QString& text);
    // When the copy on the disk was written, for a person to read.
    QString WrittenAt() const;

    // Where the copies are kept.
    static QString Folder();
    // The copy of the file at filePath.
    static QString PathFor(const QString& filePath);

private:
    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QTimer m_timer;
    bool m_closed = false;
};

} // namespace Plugin
