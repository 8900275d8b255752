#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Writes the model to its file.
class SaveCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
