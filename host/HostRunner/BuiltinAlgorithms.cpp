#include "HostRunner/BuiltinAlgorithms.h"
#include "HostRunner/ExcuteAlgo.h"

#include "HostCatalog/AlgorithmRegistry.h"

#include <mutex>

namespace HostRunner {

void RegisterBuiltinAlgorithms()
{
    static std::once_flag once;
    std::call_once(once, [] {
        RegisterRasterAlgorithms();
        RegisterRasterCalculator();
        RegisterVectorAlgorithms();
    });
}

namespace {
// Loading the library offers the catalogue to the registry, so that a host that
// only browses it sees it too; it is built on the first lookup.
const struct AutoRegister
{
    AutoRegister() { Plugin::AlgorithmRegistry::Instance().AddSource(RegisterBuiltinAlgorithms); }
} autoRegister;
} // namespace

} // namespace HostRunner
