#include "engine/HeadlessAlgo.h"

#include <QtGlobal>

// Exported under its plain name: the host's algorithm machinery asks for the two
// headless model objects by name. The caller takes the one reference.
extern "C" Q_DECL_EXPORT HostTask::IHostTask* GetAlgoObj(const QString& name)
{
    return Plugin::CreateHeadlessAlgo(name);
}
