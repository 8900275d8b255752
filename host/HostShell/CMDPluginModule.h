#pragma once

#include "HostCore/CRef.h"
#include "HostCore/_ptr_t.h"
#include "HostShell/ICommand.h"

#include <QString>

namespace HostShell {

// Base of a plug-in module: the host asks it for commands by name.
class CMDPluginModule : public HostCore::CRef
{
public:
    CMDPluginModule() = default;
    CMDPluginModule(const CMDPluginModule&) = default;
    CMDPluginModule& operator=(const CMDPluginModule&) = default;
    ~CMDPluginModule() override = default;

    // Returns a new command holding its one reference, or null for an unknown name.
    virtual HostCore::_ptr_t<ICommand> CreateCommand(const QString& name, const QString& second)
    {
        return {};
    }
};

} // namespace HostShell
