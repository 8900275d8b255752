#pragma once

#include "HostDesktop/DesktopCommand.h"

#include <QDockWidget>
#include <QPointer>

#include <memory>

namespace Plugin {

class ATBConfigFile;
class RecoveryCopy;
class ToolBoxWidget;

// The host command that shows the tool box dock. The tool box file is read at
// the first click and written when the command dies, only if the tree changed;
// meanwhile a changed tree is copied aside (RecoveryCopy), and a copy an earlier
// session left is offered at the first click.
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
    // Reads into file the items to show: those of the copy an earlier session
    // left, when the user takes it up (recovered), else those of the tool box file.
    void LoadItems(ATBConfigFile& file, bool* recovered);
    // Copies the changed tree aside.
    void KeepCopy();

    // Guarded: a host that lets its main window die first takes the dock with
    // it, and the command must not touch it again.
    QPointer<QDockWidget> m_dock;      // owned
    QPointer<ToolBoxWidget> m_toolBox; // child of the dock
    std::unique_ptr<RecoveryCopy> m_recovery;
};

} // namespace Plugin
