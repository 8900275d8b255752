#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Makes again the edit the last undo took back; its action names that edit.
class RedoCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
