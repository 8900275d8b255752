#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The file of a path, with its parent directory, moved into another directory.
// Arguments: new directory, file.
class APCFun_SelectDirectory : public APCFun
{
public:
    explicit APCFun_SelectDirectory(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 2 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
