#pragma once

#include <QString>

namespace Plugin {

class APCProcess;

// Makes processes from their class text.
class APCProcessFactory
{
public:
    static APCProcessFactory* Instance();
    virtual ~APCProcessFactory() = default;

    // "algo", "RasterFileIterator", "VectorFileIterator" or "model" (exact case);
    // null for anything else. The caller owns the result.
    APCProcess* Create(const QString& className);
};

} // namespace Plugin
