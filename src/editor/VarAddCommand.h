#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Adds a var of a type the user picks.
class VarAddCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
