#include "functions/APCFunStringParam.h"

namespace Plugin {

APCFunStringParam::APCFunStringParam(const QString& text)
    : APCFunParam(StripDelimiters(text, QLatin1Char('\'')))
{
}

bool APCFunStringParam::IsValid() { return true; }

QString APCFunStringParam::Evaluate() { return m_text; }

} // namespace Plugin
