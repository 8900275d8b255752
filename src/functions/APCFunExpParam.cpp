#include "functions/APCFunExpParam.h"

#include "functions/APCFun.h"

namespace Plugin {

APCFunExpParam::APCFunExpParam(const QString& text) : APCFunParam(text), m_fun(APCFun::Create(text)) {}

APCFunExpParam::~APCFunExpParam() = default;

bool APCFunExpParam::IsValid() { return m_fun && m_fun->IsValid(); }

void APCFunExpParam::SetModel(APCModel* model)
{
    if (m_fun)
        m_fun->SetModel(model);
}

QString APCFunExpParam::Evaluate() { return m_fun ? m_fun->Evaluate() : QString(); }

} // namespace Plugin
