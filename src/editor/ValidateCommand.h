#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Checks every object of the model.
class ValidateCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
