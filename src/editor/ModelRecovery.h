#pragma once

#include "editor/RecoveryCopy.h"
#include "model/ModelSnapshot.h"

#include <QDateTime>
#include <QString>
#include <QTimer>

namespace Plugin {

class APCModel;

// Keeps the copy of a window's model (see RecoveryCopy) while the window holds
// changes its file lacks: edits not yet saved, or a save that failed.
class ModelRecovery
{
public:
    ModelRecovery(APCModel* document, const QString& modelPath);
    // Leaves the copy when the window still differs from its file, else removes it.
    ~ModelRecovery();
    ModelRecovery(const ModelRecovery&) = delete;
    ModelRecovery& operator=(const ModelRecovery&) = delete;

    // The model as the copy an earlier window left has it, and when that was
    // written; false when there is none, or it says what the file says (it is
    // then removed), or it cannot be read.
    bool LeftCopy(ModelSnapshot* content, QDateTime* written);
    // The user would rather not have the copy LeftCopy gave.
    void DropLeftCopy();
    // The model as the file holds it now: after a save that succeeded.
    void MarkSaved();
    // The model changed: the copy follows within a couple of seconds.
    void Changed();
    // The user threw the window's changes away: the copy goes, and no other is kept.
    void Discard();
    // The user closed the window.
    void Closed() { m_copy.Closed(); }

    // The copy of the model at modelPath.
    static QString CopyPath(const QString& modelPath) { return RecoveryCopy::PathFor(modelPath); }

private:
    void Keep();

    APCModel* m_document; // not owned
    RecoveryCopy m_copy;
    QTimer m_timer;
    ModelSnapshot m_saved;   // the file's content
    ModelSnapshot m_written; // the copy's, while there is one
    bool m_hasCopy = false;
    bool m_discarded = false;
};

} // namespace Plugin
