#include "model/ModelSnapshot.h"

#include <QHash>

namespace Plugin {

namespace {

void share(QVector<QString>& texts, const QVector<QString>& base)
{
    // Mostly in the same places: compared there first.
    QHash<QString, int> where;
    for (int i = 0; i < texts.size(); ++i) {
        if (i < base.size() && texts[i] == base[i]) {
            texts[i] = base[i];
            continue;
        }
        if (where.isEmpty())
            for (int j = 0; j < base.size(); ++j)
                where.insert(base[j], j);
        const auto found = where.constFind(texts[i]);
        if (found != where.constEnd())
            texts[i] = base[found.value()];
    }
}

} // namespace

void ModelSnapshot::ShareWith(const ModelSnapshot& base)
{
    share(processes, base.processes);
    share(vars, base.vars);
    share(arrows, base.arrows);
}

} // namespace Plugin
