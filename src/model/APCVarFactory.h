#pragma once

#include <QString>

namespace Plugin {

class APCVar;

// Makes vars of a data type.
class APCVarFactory
{
public:
    static APCVarFactory* Instance();
    virtual ~APCVarFactory() = default;

    // A new var whose class is type; the caller owns it.
    APCVar* Create(const QString& type);
};

} // namespace Plugin
