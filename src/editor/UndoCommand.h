#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Takes the window's last edit back; its action names that edit.
class UndoCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
