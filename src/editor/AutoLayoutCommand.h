#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Lays the model out left to right by its arrows, as one edit (AutoLayout.cpp).
class AutoLayoutCommand : public ModelCommand
{
public:
    void OnClick() override;
    // Not in a read-only model, nor while a run goes on.
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
