#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Shows the model at scale 1:1.
class ZoomToNativeResolutionCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
