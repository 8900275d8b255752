#include "toolbox/ATBAlgo.h"

#include "HostShell/EnvironmentSetting.h"

namespace Plugin {

void ATBAlgo::SetMetadata(const QString& metadata)
{
    m_metadata = metadata;
    SetFile(HostShell::EnvironmentSetting::Instance()->GetAppBinDir() +
            QStringLiteral("/../Model/abd/%1.atb").arg(metadata));
}

} // namespace Plugin
