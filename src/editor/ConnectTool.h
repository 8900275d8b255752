#pragma once

#include "editor/ModelTool.h"

namespace Plugin {

// Connects a var and a step by dragging from one to the other.
class ConnectTool : public ModelTool
{
public:
    // Activation: sets the items up for this tool and shows its cursor.
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
