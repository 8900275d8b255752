#include "HostRunner/BuiltinAlgorithms.h"

namespace HostRunner {

void RegisterRasterAlgorithms() {}

} // namespace HostRunner
