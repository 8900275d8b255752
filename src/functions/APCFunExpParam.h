#pragma once

#include "functions/APCFunParam.h"

#include <memory>

namespace Plugin {

class APCFun;

// A nested expression, $Name(...). Its value is the nested function's.
class APCFunExpParam : public APCFunParam
{
public:
    // Parses text; the nested function is null when text doesn't parse.
    explicit APCFunExpParam(const QString& text);
    ~APCFunExpParam() override;

    bool IsValid() override;
    void SetModel(APCModel* model) override;
    // Empty when the nested function is null.
    QString Evaluate() override;

    // The nested function, owned by this argument; may be null.
    APCFun* GetFun() const { return m_fun.get(); }

private:
    std::unique_ptr<APCFun> m_fun;
};

} // namespace Plugin
