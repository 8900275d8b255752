#pragma once

#include "HostDesktop/BaseCommand.h"

namespace HostDesktop {

class IApplication;

// A command of the desktop frame; remembers the application it was created for.
class DesktopCommand : public BaseCommand
{
public:
    DesktopCommand() = default;
    DesktopCommand(const DesktopCommand&) = default;
    DesktopCommand& operator=(const DesktopCommand&) = default;

    // hook is the host's IApplication*; kept, not owned.
    void OnCreate(void* hook) override;
    IApplication* GetApplication() const { return m_application; }

protected:
    ~DesktopCommand() override = default;

private:
    IApplication* m_application = nullptr;
};

} // namespace HostDesktop
