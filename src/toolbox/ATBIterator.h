#pragma once

#include "toolbox/ATBItem.h"

namespace Plugin {

// A file iterator; its class is the object kind a drop asks the factory for.
class ATBIterator : public ATBItem
{
public:
    ATBIterator() : ATBItem(ATB_Iterator) {}

    QString GetClass() const { return m_className; }
    void SetClass(const QString& className) { m_className = className; }

private:
    QString m_className;
};

} // namespace Plugin
