#pragma once

#include "HostCatalog/AlgoConfig.h"

#include <QString>

class QWidget;

// Tells HostCatalogGui that the member below is declared, so it defines it.
#define MB_METADATA_HAS_ALGOINFO 1

namespace Plugin {

class AlgoInfo;

// The host's algorithm catalogue, a read-only view of AlgorithmRegistry.
class Metadata
{
public:
    // The catalogue; the argument names a catalogue file and is not used here.
    static Metadata* Instance(const QString& source);

    // The algorithm's config, or null when it is not installed.
    AlgoConfig* GetConfig(const QString& name);
    // The form of the algorithm named name, or null when it is not installed; the
    // caller owns the result. Defined by HostCatalogGui, which callers must link:
    // headless programs never call it and never load the widgets.
    AlgoInfo* GetAlgoInfo(const QString& name, QWidget* parent);

private:
    Metadata() = default;
};

} // namespace Plugin
