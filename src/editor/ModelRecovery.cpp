#include "editor/ModelRecovery.h"

#include "model/APCModel.h"

namespace Plugin {

ModelRecovery::ModelRecovery(APCModel* document, const QString& modelPath)
    : m_document(document), m_copy(modelPath, [this] { Keep(); }), m_saved(document->Snapshot())
{
}

ModelRecovery::~ModelRecovery()
{
    if (m_copy.KeepPending())
        Keep();
}

bool ModelRecovery::LeftCopy(ModelSnapshot* content)
{
    if (!m_copy.Exists())
        return false;
    APCModel copy;
    if (!copy.LoadFile(m_copy.Path()))
        return false; // unreadable: the window's own copy will take its place
    *content = copy.Snapshot();
    if (*content == m_saved) {
        m_copy.Remove();
        return false;
    }
    // Until the window has changes of its own, the copy it left stays as it is.
    m_written = *content;
    m_hasCopy = true;
    return true;
}

void ModelRecovery::DropLeftCopy()
{
    m_copy.Remove();
    m_hasCopy = false;
}

void ModelRecovery::MarkSaved()
{
    // The file now says what the model says: the copy has nothing left to hold.
    m_saved = m_document->Snapshot();
    m_copy.CancelKeep();
    if (m_hasCopy)
        m_copy.Remove();
    m_hasCopy = false;
}

void ModelRecovery::Changed()
{
    if (!m_discarded)
        m_copy.KeepSoon();
}

void ModelRecovery::Discard()
{
    m_discarded = true;
    m_copy.CancelKeep();
    m_copy.Remove();
}

void ModelRecovery::Keep()
{
    m_copy.CancelKeep();
    const ModelSnapshot now = m_document->Snapshot();
    if (now == m_saved) {
        if (m_hasCopy)
            m_copy.Remove();
        m_hasCopy = false;
        return;
    }
    if (m_hasCopy && now == m_written)
        return;
    // Written whole or not at all, as the model file is: a copy cut short by a
    // full disk never stands in for a good one.
    if (m_copy.Write([this](const QString& path) { return m_document->SaveFile(path); })) {
        m_written = now;
        m_hasCopy = true;
    }
}

} // namespace Plugin
