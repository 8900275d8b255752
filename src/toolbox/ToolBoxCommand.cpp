#include "toolbox/ToolBoxCommand.h"

#include "HostDesktop/IApplication.h"
#include "HostShell/EnvironmentSetting.h"
#include "editor/RecoveryCopy.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBTreeWidget.h"
#include "toolbox/ToolBoxWidget.h"

#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QFile>
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
    if (m_recovery)
        m_recovery->CancelKeep();
    if (!m_dock)
        return; // the panel was never opened, or went with the host's window
    if (m_toolBox && m_toolBox->IsModified()) {
        ATBConfigFile file;
        m_toolBox->CollectItems(file.GetItems());
        // The copy goes once the file has it all, and holds the tree otherwise.
        if (file.Save(FilePath()))
            m_recovery->Remove();
        else
            m_recovery->Write([&](const QString& path) { return file.Save(path); });
    }
    if (m_recovery)
        m_recovery->Closed();
    delete m_dock;
}

namespace {

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void ToolBoxCommand::LoadItems(ATBConfigFile& file, bool* recovered)
{
    m_recovery = std::make_unique<RecoveryCopy>(FilePath(), [this] { KeepCopy(); });
    *recovered = false;
    if (m_recovery->Exists()) {
        const QString copy = m_recovery->Path();
        if (contentsOf(copy) == contentsOf(FilePath())) {
            m_recovery->Remove();
        } else {
            const QString text = QCoreApplication::translate("ToolBoxCommand",
                                                             "Changes to the tool box made up to %1 never reached %2.\n\n"
                                                             "Show the tool box with those changes? No throws them away.")
                                     .arg(m_recovery->WrittenAt(), QDir::toNativeSeparators(QDir::cleanPath(FilePath())));
            if (!RecoveryCopy::AskToTakeUp(GetApplication() ? GetApplication()->GetMainWindow() : nullptr, text))
                m_recovery->Remove();
            else if (file.Load(copy)) {
                *recovered = true;
                return;
            }
        }
    }
    file.Load(FilePath());
}

void ToolBoxCommand::KeepCopy()
{
    if (!m_toolBox || !m_recovery || !m_toolBox->IsModified())
        return;
    m_toolBox->WriteItems([this](const QList<ATBItem*>& items) {
        ATBConfigFile file;
        file.GetItems() = items;
        return m_recovery->Write([&](const QString& path) { return file.Save(path); });
    });
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
        bool recovered = false;
        LoadItems(file, &recovered);
        m_toolBox->SetItems(mainWindow, file.GetItems());
        if (recovered)
            m_toolBox->SetModified(); // saved at the end as any change is
        QObject::connect(m_toolBox, &ToolBoxWidget::Changed, m_toolBox, [this] { m_recovery->KeepSoon(); });
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
