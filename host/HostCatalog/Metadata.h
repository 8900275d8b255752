#pragma once

#include "HostCatalog/AlgoConfig.h"

#include <QString>

namespace Plugin {

// The host's algorithm catalogue, a read-only view of AlgorithmRegistry.
class Metadata
{
public:
    // The catalogue; the argument names a catalogue file and is not used here.
    static Metadata* Instance(const QString& source);

    // The algorithm's config, or null when it is not installed.
    AlgoConfig* GetConfig(const QString& name);

private:
    Metadata() = default;
};

} // namespace Plugin
