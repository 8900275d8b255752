#pragma once

#include "functions/APCFunParam.h"

namespace Plugin {

// A literal argument, 'text'. Its value is the text between the quotes.
class APCFunStringParam : public APCFunParam
{
public:
    // Drops one quote at each end, where there is one.
    explicit APCFunStringParam(const QString& text);

    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
