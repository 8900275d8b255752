#pragma once

#include "HostShell/ICommand.h"

#include <QString>

namespace HostDesktop {

// Default command behaviour: texts from fields, always enabled, never checked.
class BaseCommand : public HostShell::ICommand
{
public:
    BaseCommand() = default;
    BaseCommand(const BaseCommand&) = default;
    BaseCommand& operator=(const BaseCommand&) = default;

    QString GetName() override { return m_name; }
    QString GetCaption() override { return m_caption; }
    QString GetToolTip() override { return m_toolTip; }
    QString GetTypeName() override { return m_typeName; }
    bool IsEnable() override { return true; }
    bool IsChecked() override { return false; }
    void OnCreate(void* hook) override {}

protected:
    ~BaseCommand() override = default;

    QString m_name;
    QString m_caption;
    QString m_toolTip;
    QString m_typeName;
    // How the host presents the command: 0 a plain action, 1 a command of a dock or tool.
    int m_commandKind = 0;
};

} // namespace HostDesktop
