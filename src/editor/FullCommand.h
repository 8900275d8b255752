#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Fits the whole model into the view.
class FullCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
