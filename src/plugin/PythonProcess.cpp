#include "plugin/PythonProcess.h"

#include <QProcess>

namespace Plugin {

void PythonProcess::get_msg()
{
    if (!m_process)
        return;
    while (m_process->canReadLine())
        emit get_message(QString::fromLocal8Bit(m_process->readLine()));
}

} // namespace Plugin
