#pragma once

#include "editor/RecoveryCopy.h"
#include "model/ModelSnapshot.h"

#include <QString>

namespace Plugin {

class APCModel;

// Keeps the copy of a window's model (see RecoveryCopy) while the window holds
// changes its file lacks: edits not yet saved, or a save that failed.
class ModelRecovery
{
public:
    ModelRecovery(APCModel* document, const QString& modelPath);
    // Brings the copy up to date when a change is still waiting for it.
    ~ModelRecovery();
    ModelRecovery(const ModelRecovery&) = delete;
    ModelRecovery& operator=(const ModelRecovery&) = delete;

    // The model as the copy an earlier window left has it; false when there is
    // none, or it says what the file says (it is then removed), or it cannot be read.
    bool LeftCopy(ModelSnapshot* content);
    // When the copy was written, for a person to read.
    QString WrittenAt() const { return m_copy.WrittenAt(); }
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
    // Writes the copy, or removes it once the model is as its file has it.
    void Keep();

    APCModel* m_document; // not owned
    RecoveryCopy m_copy;
    ModelSnapshot m_saved;   // the file's content
    ModelSnapshot m_written; // the copy's, while there is one
    bool m_hasCopy = false;
    bool m_discarded = false;
};

} // namespace Plugin
