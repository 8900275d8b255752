#pragma once

#include "toolbox/ATBItem.h"

#include <QList>

namespace Plugin {

// A row with children: groups and folders. The children are owned.
class ATBContainer : public ATBItem
{
public:
    ~ATBContainer() override;

    QList<ATBItem*>& GetChildren() { return m_children; }

protected:
    explicit ATBContainer(int type) : ATBItem(type) {}

    QList<ATBItem*> m_children;
};

} // namespace Plugin
