#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Copies the selection to the clipboard and deletes it, as one edit.
class CutCommand : public ModelCommand
{
public:
    void OnClick() override;
    // Something selected in a writable model.
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
