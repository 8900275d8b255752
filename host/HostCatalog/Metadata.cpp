#include "HostCatalog/Metadata.h"

#include "HostCatalog/AlgorithmRegistry.h"

namespace Plugin {

Metadata* Metadata::Instance(const QString&)
{
    static Metadata instance;
    return &instance;
}

AlgoConfig* Metadata::GetConfig(const QString& name)
{
    return const_cast<AlgoConfig*>(AlgorithmRegistry::Instance().Config(name));
}

} // namespace Plugin
