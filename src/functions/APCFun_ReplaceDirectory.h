#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The file name of a path in another directory.
// Arguments: new directory, file.
class APCFun_ReplaceDirectory : public APCFun
{
public:
    explicit APCFun_ReplaceDirectory(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 2 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
