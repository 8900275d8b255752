#include "LeftOutFiles.h"

#include "engine/APCFileIterator.h"

namespace Mbrun {

void LeftOutFiles::Note(Plugin::APCFileIterator* iterator)
{
    const QString name = iterator->GetDescription();
    const QStringList files = iterator->TakeUnusedFiles();
    if (files.isEmpty())
        return;
    int group = 0;
    while (group < m_groups.size() && m_groups[group].first != name)
        ++group;
    if (group == m_groups.size())
        m_groups.append({name, {}});
    for (const QString& file : files) {
        const QString key = name + QLatin1Char('\n') + file;
        if (m_seen.contains(key))
            continue;
        m_seen.insert(key);
        m_groups[group].second.append(file);
    }
}

QStringList LeftOutFiles::Warnings() const
{
    const int shown = 20; // the report lists them all
    QStringList lines;
    for (const auto& group : m_groups) {
        const QStringList& files = group.second;
        lines << QStringLiteral("mbrun: warning: files in the folders of the iterator \"%1\" that no round used (%2):\n")
                     .arg(group.first)
                     .arg(files.size());
        for (int i = 0; i < files.size() && i < shown; ++i)
            lines << QStringLiteral("mbrun:   %1\n").arg(files[i]);
        if (files.size() > shown)
            lines << QStringLiteral("mbrun:   and %1 more\n").arg(files.size() - shown);
    }
    return lines;
}

} // namespace Mbrun
