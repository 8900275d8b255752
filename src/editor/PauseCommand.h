#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Pauses a running model after the steps under way.
class PauseCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
