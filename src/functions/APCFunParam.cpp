#include "functions/APCFunParam.h"

namespace Plugin {

APCFunParam::APCFunParam(const QString& text) : m_text(text) {}

APCFunParam::~APCFunParam() = default;

bool APCFunParam::IsValid() { return false; }

void APCFunParam::SetModel(APCModel*) {}

QString APCFunParam::Evaluate() { return QString(); }

QString APCFunParam::StripDelimiters(QString text, QChar delimiter)
{
    if (text.startsWith(delimiter))
        text.remove(0, 1);
    if (text.endsWith(delimiter))
        text.chop(1);
    return text;
}

} // namespace Plugin
