#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Runs the model, asking for its free inputs.
class RunCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
