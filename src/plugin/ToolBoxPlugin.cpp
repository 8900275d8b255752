#include "plugin/ToolBoxPlugin.h"

#include "plugin/PythonCommand.h"
#include "toolbox/ToolBoxCommand.h"

#include <new>

namespace Plugin {

HostCore::_ptr_t<HostShell::ICommand> ToolBoxPlugin::CreateCommand(const QString& name, const QString&)
{
    if (name.compare(QLatin1String("ToolBox_Python"), Qt::CaseInsensitive) == 0)
        return HostCore::_ptr_t<HostShell::ICommand>(new PythonCommand);
    if (name.compare(QLatin1String("ToolBox_ToolBox"), Qt::CaseInsensitive) == 0)
        return HostCore::_ptr_t<HostShell::ICommand>(new ToolBoxCommand);
    return {};
}

} // namespace Plugin

// Exported under its plain name; the host owns the module for as long as the
// library is loaded.
extern "C" Q_DECL_EXPORT HostShell::CMDPluginModule* GetPluginModule()
{
    return new (std::nothrow) Plugin::ToolBoxPlugin;
}
