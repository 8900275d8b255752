#include "engine/APCIterator.h"
#include "model/APCDialogFactory.h"

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

APCObjectDialog* APCIterator::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::AlgoDialog, this, parent);
}

} // namespace Plugin
