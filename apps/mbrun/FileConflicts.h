#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

namespace Plugin {
class SequenceNode;
}

namespace Mbrun {

class StepFiles;

// Files that two steps of one round touch with no arrow ordering the steps: one
// writes what the other reads, or both write it. The run's result would then
// depend on which thread is faster, so a batch is refused before it starts.
class FileConflicts
{
public:
    // Notes one planned execution of node's step; round 0 is outside any round
    // and runs beside every round.
    void Add(Plugin::SequenceNode* node, int round, const StepFiles& files);
    // One line per conflict, each ending in a line feed; a long list is cut short.
    QStringList Problems() const;

private:
    // How one step uses one file, over all its rounds.
    struct Use
    {
        Plugin::SequenceNode* node = nullptr;
        bool writes = false;
        std::vector<int> rounds; // ascending, never empty
    };
    // A folder as the system resolves it, and which of its names are links.
    struct Folder
    {
        QString resolved;
        QSet<QString> links;
        bool listed = false; // else ask about each file
    };
    // The file at path as the system resolves it.
    QString SystemPath(const QString& path);
    // Whether one of the two steps waits, through arrows, for the other.
    bool Ordered(Plugin::SequenceNode* a, Plugin::SequenceNode* b) const;
    // The first round in which both use the file, 0 outside any round, -1 for none.
    static int SharedRound(const Use& a, const Use& b);
    static QString Describe(const Use& writer, const Use& other, const QString& file, int round);

    QHash<QString, QList<Use>> m_uses; // absolute path -> who uses it
    QStringList m_files;               // the paths in the order first used
    mutable QHash<Plugin::SequenceNode*, QSet<Plugin::SequenceNode*>> m_behind;
    QHash<QString, Folder> m_folders; // as written -> as the system resolves it
};

} // namespace Mbrun
