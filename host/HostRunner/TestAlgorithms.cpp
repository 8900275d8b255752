#include "HostRunner/ExcuteAlgo.h"

#include "HostCatalog/AlgoRunContext.h"
#include "HostCatalog/AlgorithmRegistry.h"

#include <QFile>
#include <QJsonObject>
#include <QThread>

#include <mutex>

namespace HostRunner {

namespace {

using Plugin::AlgoConfig;
using Plugin::AlgoRunContext;
using Plugin::Param;

Param param(const QString& name, const QString& type, int direction, const QString& def = QString(),
            bool optional = false)
{
    Param p;
    p.name = name;
    p.type = type;
    p.direction = direction;
    p.defaultValue = def;
    p.isOptional = optional;
    p.description = name;
    p.typeParam = QStringLiteral("{\"direction\":\"%1\"}").arg(direction == 1 ? 1 : 0);
    return p;
}

AlgoConfig config(const QString& name, const QString& text, QList<Param> params)
{
    AlgoConfig c;
    c.name = name;
    c.displayText = text;
    c.category = QStringLiteral("Test");
    c.params = std::move(params);
    return c;
}

QString value(const QJsonObject& params, const char* key)
{
    return params.value(QLatin1String(key)).toString();
}

} // namespace

void RegisterTestAlgorithms()
{
    static std::once_flag once;
    std::call_once(once, [] {
        auto& reg = Plugin::AlgorithmRegistry::Instance();

        reg.Register(config("test.noop", "No operation", {}),
                     [](const QJsonObject&, AlgoRunContext&) { return true; });

        reg.Register(config("test.copyText", "Copy text file",
                            {param("In File", "file", 0), param("Out File", "file", 1)}),
                     [](const QJsonObject& p, AlgoRunContext& ctx) {
                         QFile in(value(p, "In File"));
                         if (!in.open(QIODevice::ReadOnly))
                             return ctx.Fail(10, QStringLiteral("Cannot open %1").arg(in.fileName()));
                         QFile out(value(p, "Out File"));
                         if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
                             return ctx.Fail(11, QStringLiteral("Cannot write %1").arg(out.fileName()));
                         out.write(in.readAll());
                         ctx.Progress(100.0);
                         return true;
                     });

        reg.Register(config("test.fail", "Fail on purpose",
                            {param("Code", "int", 0, "7"), param("Message", "string", 0, "failed on purpose")}),
                     [](const QJsonObject& p, AlgoRunContext& ctx) {
                         return ctx.Fail(value(p, "Code").toInt(), value(p, "Message"));
                     });

        reg.Register(config("test.sleep", "Sleep", {param("Milliseconds", "int", 0, "10")}),
                     [](const QJsonObject& p, AlgoRunContext& ctx) {
                         QThread::msleep(value(p, "Milliseconds").toULong());
                         return true;
                     });

        reg.Register(config("test.progress", "Report progress", {param("Steps", "int", 0, "4")}),
                     [](const QJsonObject& p, AlgoRunContext& ctx) {
                         const int steps = qMax(1, value(p, "Steps").toInt());
                         for (int i = 1; i <= steps; ++i)
                             ctx.Progress(100.0 * i / steps, QStringLiteral("step %1").arg(i));
                         return true;
                     });

        // Appends Text and a line feed to Out File: lets tests see order and repetition.
        reg.Register(config("test.appendLine", "Append a line",
                            {param("Text", "string", 0), param("Out File", "file", 1)}),
                     [](const QJsonObject& p, AlgoRunContext& ctx) {
                         QFile out(value(p, "Out File"));
                         if (!out.open(QIODevice::WriteOnly | QIODevice::Append))
                             return ctx.Fail(11, QStringLiteral("Cannot write %1").arg(out.fileName()));
                         out.write(value(p, "Text").toUtf8() + '\n');
                         return true;
                     });
    });
}

} // namespace HostRunner
