#pragma once

namespace HostRunner {

// Each family registers its algorithms in Plugin::AlgorithmRegistry.
void RegisterRasterAlgorithms();
void RegisterRasterCalculator();
void RegisterVectorAlgorithms();

} // namespace HostRunner
