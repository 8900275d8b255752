#include "functions/APCFunVarParam.h"

#include "model/APCModel.h"
#include "model/APCVar.h"

namespace Plugin {

APCFunVarParam::APCFunVarParam(const QString& text)
    : APCFunParam(StripDelimiters(text, QLatin1Char('%')))
{
}

bool APCFunVarParam::IsValid() { return true; }

void APCFunVarParam::SetModel(APCModel* model)
{
    m_var.store(model ? model->FindVar(m_text) : nullptr);
}

QString APCFunVarParam::Evaluate()
{
    APCVar* var = m_var.load();
    return var ? var->GetRunValue() : QString();
}

} // namespace Plugin
