#pragma once

#include "HostShell/CMDPluginModule.h"

namespace Plugin {

// The module the host gets from GetPluginModule: it makes the plug-in's
// commands by name.
class ToolBoxPlugin : public HostShell::CMDPluginModule
{
public:
    ~ToolBoxPlugin() override = default;

    // "ToolBox_Python" or "ToolBox_ToolBox", in any case; null for anything else.
    // The second text is not used.
    HostCore::_ptr_t<HostShell::ICommand> CreateCommand(const QString& name, const QString& second) override;
};

} // namespace Plugin
