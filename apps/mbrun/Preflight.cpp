#include "Preflight.h"

#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "engine/ModelNesting.h"
#include "functions/APCFun.h"
#include "functions/FunctionInfo.h"
#include "model/APCArrow.h"
#include "model/APCModel.h"
#include "model/APCProcess.h"
#include "model/APCVar.h"

#include <QFileInfo>
#include <QMap>
#include <QSet>

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

QString nameOf(const Plugin::APCObject* object)
{
    return quoted(object->GetDescription().isEmpty() ? object->GetName() : object->GetDescription());
}

} // namespace

QStringList Preflight::Problems(Plugin::APCModel& model, const QString& path)
{
    if (Plugin::APCObject* bad = model.FindInvalidObject())
        return QStringList{bad->GetDescription() + QStringLiteral(" is wrong!\n")} + WhyInvalid(bad, path);
    if (model.GetProcesses().isEmpty())
        return {QStringLiteral("can not run an empty model!\n")};
    return BrokenStructure(model) + InvalidExpressions(model) + RefusedParameters(model);
}

QStringList Preflight::RefusedParameters(Plugin::APCModel& model)
{
    QStringList lines;
    for (Plugin::APCProcess* p : model.GetProcesses())
        if (auto* algo = dynamic_cast<Plugin::APCAlgo*>(p)) {
            const QStringList problem = algo->ParameterProblem();
            if (problem.size() == 2)
                lines << QStringLiteral("mbrun: the parameter %1 of %2 is refused: %3\n")
                             .arg(quoted(problem[0]), quoted(p->GetDescription()), problem[1]);
        }
    return lines;
}

QStringList Preflight::BrokenStructure(Plugin::APCModel& model)
{
    QStringList lines;
    // Two objects of one id: arrows and references would reach only the first.
    QMap<QString, QStringList> byId;
    for (Plugin::APCProcess* p : model.GetProcesses())
        byId[p->GetName()] << nameOf(p);
    for (Plugin::APCVar* v : model.GetVars())
        byId[v->GetName()] << nameOf(v);
    for (auto it = byId.constBegin(); it != byId.constEnd(); ++it)
        if (it.value().size() > 1)
            lines << QStringLiteral("mbrun: the id %1 is held by %2 objects: %3\n")
                         .arg(it.key())
                         .arg(it.value().size())
                         .arg(it.value().join(QStringLiteral(", ")));
    // An arrow whose end is not in the model joins nothing the run can follow.
    auto exists = [&model](const QString& type, const QString& id) {
        return type == QLatin1String("process") ? model.FindProcess(id) != nullptr
                                                : type == QLatin1String("var") && model.FindVar(id) != nullptr;
    };
    for (Plugin::APCArrow* a : model.GetArrows()) {
        if (!exists(a->GetTailType(), a->GetTail()))
            lines << QStringLiteral("mbrun: an arrow starts at %1 (%2), which the model does not have\n")
                         .arg(a->GetTail(), a->GetTailType());
        if (!exists(a->GetHeadType(), a->GetHead()))
            lines << QStringLiteral("mbrun: an arrow ends at %1 (%2), which the model does not have\n")
                         .arg(a->GetHead(), a->GetHeadType());
    }
    return lines;
}

QStringList Preflight::WhyInvalid(Plugin::APCObject* object, const QString& path)
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
            lines << QStringLiteral("mbrun: %1 runs the model %2, which %3\n")
                         .arg(quoted(process->GetDescription()), nested->GetModelPath(), WhyNestedFails(nested, path));
    return lines;
}

QString Preflight::WhyNestedFails(Plugin::APCModelFile* nested, const QString& path)
{
    const QString file = nested->GetModelPath();
    if (file.isEmpty())
        return QStringLiteral("is not named");
    if (!QFileInfo(file).isFile())
        return QStringLiteral("is not found");
    if (!path.isEmpty() && Plugin::ModelNesting::Canonical(file) == Plugin::ModelNesting::Canonical(path))
        return QStringLiteral("is the model itself: a model cannot contain itself");
    Plugin::APCModel inner;
    if (!inner.LoadFile(file))
        return QStringLiteral("is not a model file");
    const QStringList cycle = Plugin::ModelNesting::Cycle(file, path.isEmpty() ? QStringList() : QStringList{Plugin::ModelNesting::Canonical(path)});
    if (!cycle.isEmpty()) {
        QStringList names;
        for (const QString& f : cycle)
            names << QFileInfo(f).fileName();
        return QStringLiteral("contains a model that contains it again: ") + names.join(QStringLiteral(" -> "));
    }
    if (Plugin::APCObject* bad = inner.FindInvalidObject())
        return QStringLiteral("does not validate: %1 is wrong").arg(nameOf(bad));
    return QStringLiteral("cannot be run");
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
