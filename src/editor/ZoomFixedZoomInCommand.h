#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Zooms in by a fixed step.
class ZoomFixedZoomInCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
