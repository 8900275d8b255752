#include "model/APCVarFactory.h"

#include "model/APCVar.h"

namespace Plugin {

APCVarFactory* APCVarFactory::Instance()
{
    static APCVarFactory instance;
    return &instance;
}

APCVar* APCVarFactory::Create(const QString& type)
{
    auto* var = new APCVar;
    var->SetClass(type);
    return var;
}

} // namespace Plugin
