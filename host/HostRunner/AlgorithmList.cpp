#include "HostRunner/AlgorithmList.h"

#include "HostCatalog/AlgorithmRegistry.h"
#include "HostRunner/ExcuteAlgo.h"

#include <map>

namespace HostRunner {

namespace {

QString describeParam(const Plugin::Param& p)
{
    QStringList traits{p.type, p.direction == 1 ? QStringLiteral("output") : QStringLiteral("input")};
    if (p.isOptional)
        traits << QStringLiteral("optional");
    if (!p.defaultValue.isEmpty())
        traits << QStringLiteral("default `%1`").arg(p.defaultValue);
    QString line = QStringLiteral("  - `%1` (%2)").arg(p.name, traits.join(QLatin1String(", ")));
    if (!p.description.isEmpty() && p.description != p.name)
        line += QStringLiteral(": ") + p.description;
    return line;
}

} // namespace

QString AlgorithmListMarkdown()
{
    const Plugin::AlgorithmRegistry& registry = Plugin::AlgorithmRegistry::Instance();
    std::map<QString, QStringList> byCategory; // sorted categories, names sorted by the registry
    for (const QString& name : registry.Names()) {
        const Plugin::AlgoConfig* config = registry.Config(name);
        if (!config || config->category == QLatin1String("Test"))
            continue;
        const QString category = config->category.isEmpty() ? QStringLiteral("Other") : config->category;
        QStringList& lines = byCategory[category];
        QString head = QStringLiteral("- **%1** (`%2`)").arg(config->displayText, config->name);
        if (!config->help.isEmpty())
            head += QStringLiteral(": ") + config->help;
        lines << head;
        for (const Plugin::Param& p : config->params)
            lines << describeParam(p);
    }
    QString text;
    for (const auto& entry : byCategory) {
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += QStringLiteral("### %1\n\n").arg(entry.first) + entry.second.join(QLatin1Char('\n')) + QLatin1Char('\n');
    }
    return text;
}

} // namespace HostRunner
