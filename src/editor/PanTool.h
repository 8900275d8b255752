#pragma once

#include "editor/ModelTool.h"

namespace Plugin {

// Moves the view with the mouse.
class PanTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
