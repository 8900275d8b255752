#pragma once

#include <QList>
#include <QString>

namespace Plugin {

class APCModel;
class APCFunParam;
struct FunctionInfo;

// A parsed path expression, e.g. $AppendSuffix(%id%, '_x'). Bound to a model's vars
// by SetModel, evaluated to a string.
class APCFun
{
public:
    // Parses text; null when it is no valid expression. The caller owns the result.
    static APCFun* Create(const QString& text);
    // The catalogue of the path functions, built afresh on each call.
    static QList<FunctionInfo> GetFunctionList();

    explicit APCFun(const QString& text);
    APCFun(const APCFun&) = delete;
    APCFun& operator=(const APCFun&) = delete;
    virtual ~APCFun();

    virtual bool IsValid();
    // Binds var references to the vars of model; call again after adding vars.
    virtual void SetModel(APCModel* model);
    virtual QString Evaluate();

    QString GetText() const { return m_text; }

protected:
    const QList<APCFunParam*>& Params() const { return m_params; }

private:
    QString m_text;
    QList<APCFunParam*> m_params; // owned
};

} // namespace Plugin
