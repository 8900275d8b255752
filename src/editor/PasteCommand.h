#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Pastes objects copied from a model window.
class PasteCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override;
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
