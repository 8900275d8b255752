#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The path with the text behind the last "." of its file name replaced.
// Arguments: path, new extension.
class APCFun_ReplaceExtension : public APCFun
{
public:
    explicit APCFun_ReplaceExtension(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 2 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
