#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Deletes the selected objects.
class DeleteCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
