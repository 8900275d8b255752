#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Copies the selection to the clipboard.
class CopyCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
