#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Zooms out by a fixed step.
class ZoomFixedZoomOutCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
