#pragma once

#include <QString>

#include <mutex>

namespace HostShell {

// Process-wide host settings.
class EnvironmentSetting
{
public:
    static EnvironmentSetting* Instance();

    // Directory of the running executable unless a test set another one.
    QString GetAppBinDir() const;
    // Overrides the binary directory (tests); an empty text restores the default.
    void SetAppBinDir(const QString& dir);

private:
    EnvironmentSetting() = default;

    mutable std::mutex m_mutex;
    QString m_appBinDir;
};

} // namespace HostShell
