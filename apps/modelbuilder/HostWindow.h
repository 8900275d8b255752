#pragma once

#include "HostCore/_ptr_t.h"
#include "HostDesktop/IApplication.h"
#include "HostShell/ICommand.h"

#include <QMainWindow>

#include <vector>

class QAction;
class QToolBar;

// The main window of the desktop host: an (empty) map in the middle, one
// tool-bar button per plug-in command, and the docks the commands add. Its size,
// place and dock layout are kept between runs in the host's own settings.
class HostWindow : public QMainWindow, public HostDesktop::IApplication
{
public:
    HostWindow();

    QMainWindow* GetMainWindow() override { return this; }

    // Shows command as a tool-bar button named after it; the window keeps a reference.
    void AddCommand(const HostCore::_ptr_t<HostShell::ICommand>& command);
    // Starts asking the commands, four times a second, whether they are enabled.
    void StartPolling();
    // Puts the window where the last run left it, or at its first-run size.
    // Call before show().
    void RestoreGeometry();
    // Lays the docks out as the last run left them; on a first run docks at the
    // right get a width a tree of tools can be read at. Call once the commands
    // that make docks have made them.
    void RestoreDocks();

    // The tool-bar action of a command, or null.
    QAction* FindAction(const QString& commandName) const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QToolBar* m_toolBar;
    std::vector<HostCore::_ptr_t<HostShell::ICommand>> m_commands;
    std::vector<QAction*> m_actions; // parented by the tool bar
};
