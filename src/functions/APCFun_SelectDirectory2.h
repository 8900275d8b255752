#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The part of a path behind a base directory, moved into another directory. No
// check is made that the base really is a prefix of the path.
// Arguments: new directory, file, base directory.
class APCFun_SelectDirectory2 : public APCFun
{
public:
    explicit APCFun_SelectDirectory2(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 3 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
