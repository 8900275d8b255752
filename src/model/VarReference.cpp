#include "model/VarReference.h"

#include "model/APCModel.h"
#include "model/APCVar.h"

namespace Plugin {

bool IsVarReference(const QString& value)
{
    return value.startsWith(QLatin1Char('%'));
}

QString ReferencedVarId(const QString& value)
{
    return QString(value).remove(QLatin1Char('%'));
}

QString VarReferenceTo(const QString& id)
{
    return QLatin1Char('%') + id + QLatin1Char('%');
}

QStringList ReferencedIdsIn(const QString& expression)
{
    QStringList ids;
    int p = 0;
    for (;;) {
        const int open = expression.indexOf(QLatin1Char('%'), p);
        if (open < 0)
            break;
        const int close = expression.indexOf(QLatin1Char('%'), open + 1);
        if (close < 0)
            break;
        ids << expression.mid(open + 1, close - open - 1);
        p = close + 1;
    }
    return ids;
}

APCVar* ReferencedVar(const APCModel* model, const QString& value)
{
    if (!model || !IsVarReference(value))
        return nullptr;
    return model->FindVar(ReferencedVarId(value));
}

QString RunValueOf(const APCModel* model, const QString& value)
{
    if (!IsVarReference(value))
        return value;
    const APCVar* var = ReferencedVar(model, value);
    return var ? var->GetRunValue() : QString();
}

} // namespace Plugin
