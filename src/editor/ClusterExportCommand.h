#pragma once

#include "editor/ModelCommand.h"

namespace Plugin {

// Writes the model's rounds as a Snakemake workflow into a folder, asking for its
// free inputs as Run does, and tells the command that runs it.
class ClusterExportCommand : public ModelCommand
{
public:
    void OnClick() override;
    bool IsEnable() override { return true; }
    bool ReservedQuery() override { return true; }
};

} // namespace Plugin
