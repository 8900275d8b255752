#pragma once

#include "HostDesktop/DesktopCommand.h"

#include <QDockWidget>
#include <QPointer>

namespace Plugin {

class ToolBoxWidget;

// The host command that shows the tool box dock. The tool box file is read at
// the first click and written when the command dies, only if the tree changed.
class ToolBoxCommand : public HostDesktop::DesktopCommand
{
public:
    ToolBoxCommand();

    bool IsEnable() override { return true; }
    void OnCreate(void* hook) override;
    void OnClick() override;

    // The path of the tool box file below the application root.
    static QString FilePath();

    ToolBoxWidget* GetToolBox() const;
    QDockWidget* GetDock() const { return m_dock; }

protected:
    ~ToolBoxCommand() override;

private:
    // Guarded: a host that lets its main window die first takes the dock with
    // it, and the command must not touch it again.
    QPointer<QDockWidget> m_dock;      // owned
    QPointer<ToolBoxWidget> m_toolBox; // child of the dock
};

} // namespace Plugin
