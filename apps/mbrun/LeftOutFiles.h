#pragma once

#include <QList>
#include <QPair>
#include <QSet>
#include <QStringList>

namespace Plugin {
class APCFileIterator;
}

namespace Mbrun {

// The files of the searched folders that no round of a file iterator used: its
// pairing keeps one file where several match, and a batch user must hear of the
// others. Gathered scan by scan, in the run and in the plan alike.
class LeftOutFiles
{
public:
    // Takes what iterator's last scan left out; a rescan names a file once only.
    void Note(Plugin::APCFileIterator* iterator);
    // Per iterator (its description), its left-out files in the order found.
    const QList<QPair<QString, QStringList>>& Groups() const { return m_groups; }
    // mbrun's warning lines; at most a screenful of names per iterator.
    QStringList Warnings() const;

private:
    QList<QPair<QString, QStringList>> m_groups;
    QSet<QString> m_seen; // iterator description + line feed + file
};

} // namespace Mbrun
