#include "toolbox/ToolBoxCommand.h"

#include "HostDesktop/IApplication.h"
#include "HostShell/EnvironmentSetting.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBTreeWidget.h"
#include "toolbox/ToolBoxWidget.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>

namespace Plugin {

ToolBoxCommand::ToolBoxCommand()
{
    m_name = QStringLiteral("ToolBox_ToolBox");
    m_caption = QCoreApplication::translate("ToolBoxCommand", "Tool Box");
    m_toolTip = m_caption;
}

ToolBoxCommand::~ToolBoxCommand()
{
    if (!m_dock)
        return; // the panel was never opened: the file is left alone
    if (m_toolBox && m_toolBox->IsModified()) {
        ATBConfigFile file;
        m_toolBox->CollectItems(file.GetItems());
        file.Save(FilePath());
    }
    delete m_dock;
}

QString ToolBoxCommand::FilePath()
{
    return HostShell::EnvironmentSetting::Instance()->GetAppBinDir() + QStringLiteral("/../Model/atb/ToolBox.atb");
}

ToolBoxWidget* ToolBoxCommand::GetToolBox() const { return m_toolBox.data(); }

void ToolBoxCommand::OnCreate(void* hook) { DesktopCommand::OnCreate(hook); }

void ToolBoxCommand::OnClick()
{
    QMainWindow* mainWindow = GetApplication() ? GetApplication()->GetMainWindow() : nullptr;
    if (!m_dock) {
        m_dock = new QDockWidget(QCoreApplication::translate("ToolBoxCommand", "Tool Box"), mainWindow);
        m_dock->setObjectName(m_name); // a host that saves its dock layout finds the dock by it
    }
    if (!m_toolBox) {
        m_toolBox = new ToolBoxWidget;
        ATBConfigFile file;
        file.Load(FilePath());
        m_toolBox->SetItems(mainWindow, file.GetItems());
        m_toolBox->GetTree()->expandToDepth(0); // the groups open, their folders closed
        m_dock->setWidget(m_toolBox);
        m_dock->setAllowedAreas(Qt::AllDockWidgetAreas);
        if (mainWindow)
            mainWindow->addDockWidget(Qt::RightDockWidgetArea, m_dock);
    }
    if (m_dock->isHidden())
        m_dock->show();
}

} // namespace Plugin
