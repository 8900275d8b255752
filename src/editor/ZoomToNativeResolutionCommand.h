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
    // Remembers the scale of the new window (1.0) to go back to.
    void OnCreate() override;

private:
    double m_nativeScale = 1.0;
};

} // namespace Plugin
