#include "editor/ModelRecovery.h"

#include "model/APCModel.h"

#include <QFile>
#include <QFileInfo>

namespace Plugin {

namespace {

// Long enough that a burst of edits costs one write, short enough that a crash
// costs little.
constexpr int kKeepDelayMs = 2000;

} // namespace

ModelRecovery::ModelRecovery(APCModel* document, const QString& modelPath)
    : m_document(document), m_copy(modelPath), m_saved(document->Snapshot())
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kKeepDelayMs);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Keep(); });
}

ModelRecovery::~ModelRecovery()
{
    if (m_copy.IsActive() && !m_discarded)
        Keep();
}

bool ModelRecovery::LeftCopy(ModelSnapshot* content, QDateTime* written)
{
    if (!m_copy.Exists())
        return false;
    APCModel copy;
    if (!copy.LoadFile(m_copy.Path()))
        return false; // unreadable: the window's own copy will take its place
    *content = copy.Snapshot();
    *written = QFileInfo(m_copy.Path()).lastModified();
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
    m_saved = m_document->Snapshot();
    if (m_copy.IsActive() && !m_discarded)
        Keep();
}

void ModelRecovery::Changed()
{
    if (m_copy.IsActive() && !m_discarded && !m_timer.isActive())
        m_timer.start();
}

void ModelRecovery::Discard()
{
    m_discarded = true;
    m_timer.stop();
    m_copy.Remove();
}

void ModelRecovery::Keep()
{
    m_timer.stop();
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
