#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Writes the model to a file the user picks.
class SaveAsCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
