#include "engine/APCIterator.h"

namespace Plugin {

void APCIterator::CopyIteratorFrom(const APCIterator& other)
{
    CopyProcessFrom(other);
    m_iteratorState = other.m_iteratorState;
}

APCObject* APCIterator::Clone()
{
    auto* copy = new APCIterator;
    copy->CopyIteratorFrom(*this);
    return copy;
}

void APCIterator::WriteXml(QXmlStreamWriter& writer, bool)
{
    WriteProcessElement(writer, true);
}

// The iterator dialogs come with the editor's dialogs.
APCObjectDialog* APCIterator::CreateDialog(QWidget*) { return nullptr; }

} // namespace Plugin
