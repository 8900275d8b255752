#include "HostDesktop/DesktopCommand.h"

namespace HostDesktop {

void DesktopCommand::OnCreate(void* hook)
{
    m_application = static_cast<IApplication*>(hook);
}

} // namespace HostDesktop
