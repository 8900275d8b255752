#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The path with every occurrence of a text replaced by another.
// Arguments: path, old text, new text.
class APCFun_ReplaceSuffix : public APCFun
{
public:
    explicit APCFun_ReplaceSuffix(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 3 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
