#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Writes a picture of the whole model to a file the user names: SVG, PNG or PDF
// (ModelPicture.cpp).
class PrintCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
