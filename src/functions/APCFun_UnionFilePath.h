#pragma once

#include "functions/APCFun.h"

namespace Plugin {

struct FunctionInfo;

// One path made of two paths of the same folder: per level, the pieces (cut at a
// separator) that both have.
// Arguments: first path, second path, separator.
class APCFun_UnionFilePath : public APCFun
{
public:
    explicit APCFun_UnionFilePath(const QString& text);

    // The catalogue entry: name, help text and argument count.
    static FunctionInfo Info();

    // Exactly 3 arguments.
    bool IsValid() override;
    QString Evaluate() override;

private:
    // The pieces of x that y also holds, in x's order and without repeats; when
    // there are none, all of x followed by all of y.
    static QStringList CommonParts(const QStringList& x, const QStringList& y);
};

} // namespace Plugin
