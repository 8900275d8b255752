#pragma once

class QMainWindow;

namespace HostDesktop {

// What the desktop host hands to a command's OnCreate: access to its main window.
class IApplication
{
public:
    virtual ~IApplication() = default;
    virtual QMainWindow* GetMainWindow() = 0;
};

} // namespace HostDesktop
