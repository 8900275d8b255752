#include "HostRunner/BuiltinAlgorithms.h"
#include "HostRunner/ExcuteAlgo.h"

#include <mutex>

namespace HostRunner {

void RegisterBuiltinAlgorithms()
{
    static std::once_flag once;
    std::call_once(once, [] {
        RegisterRasterAlgorithms();
        RegisterVectorAlgorithms();
    });
}

namespace {
// Registers the catalogue as soon as the library is loaded, so that a host that
// only browses the catalogue sees it too.
const struct AutoRegister
{
    AutoRegister() { RegisterBuiltinAlgorithms(); }
} autoRegister;
} // namespace

} // namespace HostRunner
