#pragma once

#include "HostDesktop/DesktopCommand.h"

namespace Plugin {

// A command a host configuration may name; the work on scripts is done by the
// tool box's python items, so a click does nothing.
class PythonCommand : public HostDesktop::DesktopCommand
{
public:
    PythonCommand();

    void OnClick() override {}
    void GetMessageW(const QString& text);

protected:
    ~PythonCommand() override = default;
};

} // namespace Plugin
