#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Kept as a named action, ready to be wired; the editor has no redo.
class RedoCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
