#include "engine/HeadlessAlgo.h"

#include "engine/ModelAlgo.h"
#include "engine/ModelInfoAlgo.h"

namespace Plugin {

HostTask::IHostTask* CreateHeadlessAlgo(const QString& name)
{
    if (name == QLatin1String("ModelAlgo"))
        return new ModelAlgo;
    if (name == QLatin1String("ModelAlgoInfo"))
        return new ModelInfoAlgo;
    return nullptr;
}

} // namespace Plugin
