#include "Preflight.h"

#include "engine/APCModelFile.h"
#include "functions/APCFun.h"
#include "functions/FunctionInfo.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QMap>

namespace Mbrun {

namespace {

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// The function an expression calls: the text from its "$" to the "(" behind it.
QString calledFunction(const QString& text)
{
    const int dollar = text.indexOf(QLatin1Char('$'));
    const int open = dollar < 0 ? -1 : text.indexOf(QLatin1Char('('), dollar);
    return open < 0 ? QString() : text.mid(dollar, open - dollar).trimmed();
}

} // namespace

QStringList Preflight::Problems(Plugin::APCModel& model)
{
    if (Plugin::APCObject* bad = model.FindInvalidObject())
        return QStringList{bad->GetDescription() + QStringLiteral(" is wrong!\n")} + WhyInvalid(bad);
    if (model.GetProcesses().isEmpty())
        return {QStringLiteral("can not run an empty model!\n")};
    return InvalidExpressions(model);
}

QStringList Preflight::WhyInvalid(Plugin::APCObject* object)
{
    QStringList lines;
    auto* process = dynamic_cast<Plugin::APCProcess*>(object);
    if (!process)
        return lines;
    for (const Plugin::APCParameter& p : process->GetParameters()) {
        if (!p.value.isEmpty() || p.isOptional)
            continue;
        QString line = QStringLiteral("mbrun: the parameter %1 of %2 has no value").arg(quoted(p.name), quoted(process->GetDescription()));
        if (!p.description.isEmpty() && p.description != p.name)
            line += QStringLiteral(" (%1)").arg(p.description);
        lines << line + QLatin1Char('\n');
    }
    if (lines.isEmpty())
        if (auto* nested = dynamic_cast<Plugin::APCModelFile*>(process))
            lines << QStringLiteral("mbrun: %1 runs the model %2, which cannot be read, does not validate or contains itself\n")
                         .arg(quoted(process->GetDescription()), nested->GetModelPath());
    return lines;
}

QStringList Preflight::InvalidExpressions(Plugin::APCModel& model)
{
    QStringList lines;
    QMap<QString, QString> usage; // function name as written -> the example of its help
    for (Plugin::APCVar* v : model.GetVars()) {
        if (v->GetConstant() || v->GetFunExp().trimmed().isEmpty() || v->GetFun())
            continue;
        const QString text = v->GetFunExp();
        lines << QStringLiteral("mbrun: the variable %1 has an expression that cannot be read: %2\n")
                     .arg(quoted(v->GetDescription().isEmpty() ? v->GetName() : v->GetDescription()), text);
        if (usage.isEmpty())
            for (const Plugin::FunctionInfo& f : Plugin::APCFun::GetFunctionList()) {
                // The help begins with the call as it is written.
                const QString example = f.help.section(QLatin1Char('\n'), 0, 0).trimmed();
                usage.insert(calledFunction(example), example);
            }
        const QString called = calledFunction(text);
        if (usage.contains(called))
            lines << QStringLiteral("mbrun:   it is written %1; look at the commas, quotes and parentheses\n").arg(usage.value(called));
        else
            lines << QStringLiteral("mbrun:   there is no function %1; the functions are %2\n")
                         .arg(quoted(called), QStringList(usage.keys()).join(QStringLiteral(", ")));
    }
    return lines;
}

} // namespace Mbrun
