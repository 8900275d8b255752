#include "HostRunner/BuiltinAlgorithms.h"

namespace HostRunner {

void RegisterVectorAlgorithms() {}

} // namespace HostRunner
