#include "toolbox/ToolBoxCommand.h"

#include "HostDesktop/IApplication.h"
#include "HostShell/EnvironmentSetting.h"
#include "editor/RecoveryCopy.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBTreeWidget.h"
#include "toolbox/ToolBoxWidget.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMainWindow>
#include <QMessageBox>

namespace Plugin {

ToolBoxCommand::ToolBoxCommand()
{
    m_name = QStringLiteral("ToolBox_ToolBox");
    m_caption = QCoreApplication::translate("ToolBoxCommand", "Tool Box");
    m_toolTip = m_caption;
    // Long enough that a burst of changes costs one write, short enough that a
    // crash costs little.
    m_keep.setSingleShot(true);
    m_keep.setInterval(2000);
    QObject::connect(&m_keep, &QTimer::timeout, [this] { KeepCopy(); });
}

ToolBoxCommand::~ToolBoxCommand()
{
    m_keep.stop();
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
    m_recovery = std::make_unique<RecoveryCopy>(FilePath());
    *recovered = false;
    if (m_recovery->Exists()) {
        const QString copy = m_recovery->Path();
        if (contentsOf(copy) == contentsOf(FilePath())) {
            m_recovery->Remove();
        } else {
            QMessageBox box(QMessageBox::Question, QCoreApplication::translate("ToolBoxCommand", "Recover changes"),
                            QCoreApplication::translate("ToolBoxCommand",
                                                        "Changes to the tool box made up to %1 never reached %2.\n\n"
                                                        "Show the tool box with those changes? No throws them away.")
                                .arg(QLocale().toString(QFileInfo(copy).lastModified(), QLocale::ShortFormat),
                                     QDir::toNativeSeparators(QDir::cleanPath(FilePath()))),
                            QMessageBox::Yes | QMessageBox::No, GetApplication() ? GetApplication()->GetMainWindow() : nullptr);
            // Taking them up is the answer that loses nothing.
            box.setDefaultButton(QMessageBox::Yes);
            box.setEscapeButton(QMessageBox::Yes);
            if (box.exec() != QMessageBox::Yes)
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
        QObject::connect(m_toolBox, &ToolBoxWidget::Changed, &m_keep, [this] {
            if (!m_keep.isActive())
                m_keep.start();
        });
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
