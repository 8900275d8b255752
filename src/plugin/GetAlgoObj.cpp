#include "engine/ModelAlgo.h"
#include "engine/ModelInfoAlgo.h"

// Exported under its plain name: the host's algorithm machinery asks for the two
// headless model objects by name. The caller takes the one reference.
extern "C" Q_DECL_EXPORT HostTask::IHostTask* GetAlgoObj(const QString& name)
{
    if (name == QLatin1String("ModelAlgo"))
        return new Plugin::ModelAlgo;
    if (name == QLatin1String("ModelAlgoInfo"))
        return new Plugin::ModelInfoAlgo;
    return nullptr;
}
