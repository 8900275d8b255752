#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Kept as a named action, ready to be wired; does nothing.
class CutCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
