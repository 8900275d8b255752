#pragma once

#include "model/ModelSnapshot.h"

#include <QDateTime>
#include <QString>
#include <QTimer>

#include <memory>

class QLockFile;

namespace Plugin {

class APCModel;

// Keeps a copy of a window's model while the window holds changes its file lacks
// (edits not yet saved, or a save that failed), so that a crash of the
// application, a killed process or a lost session costs at most the last few
// seconds of editing. The copy lives in the user's data folder, one per model
// file, locked while its window is open. A copy is offered when the model next
// opens once the window that left it is gone: closed, or its process ended. A
// window the program dropped without closing it (at its teardown) keeps the copy
// locked until the process ends, for the next session to offer.
class ModelRecovery
{
public:
    // Inactive (it keeps nothing) when the folder cannot be made or another
    // window, of this process or another, holds the model's copy.
    ModelRecovery(APCModel* document, const QString& modelPath);
    // Leaves the copy when the window still differs from its file, else removes it.
    ~ModelRecovery();
    ModelRecovery(const ModelRecovery&) = delete;
    ModelRecovery& operator=(const ModelRecovery&) = delete;

    bool IsActive() const { return m_lock != nullptr; }
    // The model as the copy an earlier window left has it, and when that was
    // written; false when there is none, or it says what the file says (it is
    // then removed), or it cannot be read.
    bool LeftCopy(ModelSnapshot* content, QDateTime* written);
    // The model as the file holds it now: after the load, or a save that succeeded.
    void MarkSaved();
    // The model changed: the copy follows within a couple of seconds.
    void Changed();
    // The user would rather not have the copy LeftCopy gave.
    void DropLeftCopy();
    // The user threw the window's changes away: the copy goes, and no other is kept.
    void Discard();
    // The user closed the window.
    void Closed() { m_closed = true; }

    // Where the copies are kept.
    static QString Folder();
    // The copy of the model at modelPath.
    static QString CopyPath(const QString& modelPath);

private:
    void Keep();

    APCModel* m_document; // not owned
    QString m_copy;
    std::unique_ptr<QLockFile> m_lock;
    QTimer m_timer;
    ModelSnapshot m_saved;   // the file's content
    ModelSnapshot m_written; // the copy's, while there is one
    bool m_hasCopy = false;
    bool m_discarded = false;
    bool m_closed = false;
};

} // namespace Plugin
