#include "plugin/PythonCommand.h"

#include <QCoreApplication>

namespace Plugin {

PythonCommand::PythonCommand()
{
    m_name = QStringLiteral("ToolBox_Python");
    m_caption = QCoreApplication::translate("PythonCommand", "Python");
    m_toolTip = m_caption;
    m_commandKind = 1; // presented as a command of a tool
}

void PythonCommand::GetMessageW(const QString& text)
{
    const QString copy = text;
    Q_UNUSED(copy)
}

} // namespace Plugin
