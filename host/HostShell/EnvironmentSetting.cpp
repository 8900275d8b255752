#include "HostShell/EnvironmentSetting.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace HostShell {

EnvironmentSetting* EnvironmentSetting::Instance()
{
    static EnvironmentSetting instance;
    return &instance;
}

QString EnvironmentSetting::GetAppBinDir() const
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_appBinDir.isEmpty())
            return m_appBinDir;
    }
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath();
}

void EnvironmentSetting::SetAppBinDir(const QString& dir)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_appBinDir = dir;
}

} // namespace HostShell
