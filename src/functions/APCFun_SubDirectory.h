#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// The file of the path moved into a subdirectory of its own directory, made
// absolute. The only function that touches the disk: it creates the subdirectory.
// Paths are taken as they are, not normalised.
// Arguments: path, subdirectory name.
class APCFun_SubDirectory : public APCFun
{
public:
    explicit APCFun_SubDirectory(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 2 arguments.
    bool IsValid() override;
    QString Evaluate() override;
};

} // namespace Plugin
