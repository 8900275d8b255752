#include "toolbox/ATBPython.h"

#include "HostShell/EnvironmentSetting.h"

#include <QFileInfo>
#include <QProcess>

namespace Plugin {

ATBPython::ATBPython() : ATBFile(ATB_Python), m_process(new QProcess) {}

ATBPython::~ATBPython() { delete m_process; }

void ATBPython::EditorCommand(QString& program, QStringList& arguments) const
{
    const QString python = HostShell::EnvironmentSetting::Instance()->GetAppBinDir() + QStringLiteral("/../Python");
    const QString script = AppRoot() + m_file;
    const QString windows = python + QStringLiteral("/python.exe");
    if (QFileInfo(windows).exists()) {
        program = windows;
        arguments = QStringList{python + QStringLiteral("/Lib/idlelib/idle.pyw"), script};
        return;
    }
    // Elsewhere the installation's own interpreter if it carries one, else the
    // system's; both bring the editor as a module.
    const QString posix = python + QStringLiteral("/bin/python3");
    program = QFileInfo(posix).isExecutable() ? posix : QStringLiteral("python3");
    arguments = QStringList{QStringLiteral("-m"), QStringLiteral("idlelib"), script};
}

void ATBPython::OnDoubleClicked()
{
    if (!m_process)
        return;
    QString program;
    QStringList arguments;
    EditorCommand(program, arguments);
    m_process->start(program, arguments, QIODevice::ReadWrite);
}

} // namespace Plugin
