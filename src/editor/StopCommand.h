#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Stops the run.
class StopCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
