#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The path with a suffix inserted in front of its extension.
// Arguments: path, suffix.
class APCFun_AppendSuffix : public APCFun
{
public:
    explicit APCFun_AppendSuffix(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 2 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
