#pragma once

#include "toolbox/ATBContainer.h"

namespace Plugin {

// A top-level heading of the tool box; a double click only expands it.
class ATBGroup : public ATBContainer
{
public:
    ATBGroup() : ATBContainer(ATB_Group) {}
};

} // namespace Plugin
