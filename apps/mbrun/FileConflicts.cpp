#include "FileConflicts.h"

#include "StepFiles.h"

#include "engine/SequenceNode.h"
#include "engine/StepGraph.h"
#include "model/APCProcess.h"

#include "HostRunner/OutputPaths.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace Mbrun {

namespace {

// The names of the links in folder, read in one pass: a batch names thousands of files
// in one folder, and asking the system about each one costs a call per file. Sets ok
// false when the folder exists but cannot be listed.
QSet<QString> linksIn(const QString& folder, bool* ok)
{
    QSet<QString> links;
    DIR* dir = opendir(QFile::encodeName(folder).constData());
    *ok = dir || errno == ENOENT || errno == ENOTDIR;
    if (!dir)
        return links;
    while (const dirent* entry = readdir(dir)) {
        bool link = entry->d_type == DT_LNK;
        struct stat st;
        if (entry->d_type == DT_UNKNOWN && fstatat(dirfd(dir), entry->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0)
            link = S_ISLNK(st.st_mode);
        if (link)
            links.insert(QFile::decodeName(entry->d_name));
    }
    closedir(dir);
    return links;
}

} // namespace

void FileConflicts::Add(Plugin::SequenceNode* node, int round, const StepFiles& files)
{
    auto note = [&](const QString& path, bool writes) {
        const QString file = SystemPath(path);
        QList<Use>& uses = m_uses[file];
        if (uses.isEmpty())
            m_files.append(file);
        for (Use& use : uses)
            if (use.node == node && use.writes == writes) {
                // Rounds mostly come in order: then this is an append.
                auto at = std::lower_bound(use.rounds.begin(), use.rounds.end(), round);
                if (at == use.rounds.end() || *at != round)
                    use.rounds.insert(at, round);
                return;
            }
        Use use;
        use.node = node;
        use.writes = writes;
        use.rounds.push_back(round);
        uses.append(use);
    };
    for (const QString& out : files.Outputs())
        note(out, true);
    for (const QString& in : files.Inputs())
        note(in, false);
}

QString FileConflicts::SystemPath(const QString& path)
{
    // As the system reaches the file, so that two spellings of it (through a link,
    // through "..") meet. A batch names thousands of files in a few folders: each
    // folder is resolved once, the name alone when it is a link.
    const QFileInfo info(path);
    const QString name = info.fileName();
    if (name.isEmpty() || name == QLatin1String("..") || name == QLatin1String("."))
        return HostRunner::SystemPath(path);
    const QString folder = info.path();
    auto it = m_folders.constFind(folder);
    if (it == m_folders.constEnd()) {
        Folder f;
        f.resolved = HostRunner::SystemPath(folder);
        f.links = linksIn(f.resolved, &f.listed);
        it = m_folders.insert(folder, f);
    }
    const QString file = it->resolved + QLatin1Char('/') + name;
    const bool link = it->listed ? it->links.contains(name) : QFileInfo(file).isSymLink();
    return link ? HostRunner::SystemPath(file) : file;
}

int FileConflicts::SharedRound(const Use& a, const Use& b)
{
    // What runs outside any round runs beside all of them.
    if (a.rounds.front() == 0 || b.rounds.front() == 0)
        return 0;
    auto i = a.rounds.begin();
    auto j = b.rounds.begin();
    while (i != a.rounds.end() && j != b.rounds.end()) {
        if (*i == *j)
            return *i;
        if (*i < *j)
            ++i;
        else
            ++j;
    }
    return -1;
}

bool FileConflicts::Ordered(Plugin::SequenceNode* a, Plugin::SequenceNode* b) const
{
    for (Plugin::SequenceNode* from : {a, b})
        if (!m_behind.contains(from))
            m_behind.insert(from, Plugin::StepGraph::Behind(from));
    return m_behind[a].contains(b) || m_behind[b].contains(a);
}

QString FileConflicts::Describe(const Use& writer, const Use& other, const QString& file, int round)
{
    Plugin::APCProcess* wp = writer.node->GetProcess();
    Plugin::APCProcess* op = other.node->GetProcess();
    // Two steps of one algorithm often keep its name: then the ids tell them apart.
    const bool same = wp->GetDescription() == op->GetDescription();
    auto name = [same](Plugin::APCProcess* p) {
        return QLatin1Char('"') + p->GetDescription() + QLatin1Char('"') +
               (same ? QStringLiteral(" (%1)").arg(p->GetName()) : QString());
    };
    const QString w = name(wp);
    const QString o = name(op);
    const QString in = round > 0 ? QStringLiteral(" in round %1").arg(round) : QString();
    if (other.writes)
        return QStringLiteral("mbrun: %1 and %2 both write %3%4, and no arrow orders them: which file stays would depend on timing\n")
            .arg(w, o, file, in);
    return QStringLiteral("mbrun: %1 reads %2, which %3 writes%4, and no arrow orders them: what it reads would depend on timing\n")
        .arg(o, file, w, in);
}

QStringList FileConflicts::Problems() const
{
    const int shown = 10;
    QStringList lines;
    int more = 0;
    for (const QString& file : m_files) {
        const QList<Use>& uses = m_uses[file];
        for (int i = 0; i < uses.size(); ++i) {
            if (!uses[i].writes)
                continue;
            for (int j = 0; j < uses.size(); ++j) {
                const Use& w = uses[i];
                const Use& o = uses[j];
                // A step's own files, and two writers told once.
                if (o.node == w.node || (o.writes && j < i))
                    continue;
                const int round = SharedRound(w, o);
                if (round < 0 || Ordered(w.node, o.node))
                    continue;
                if (lines.size() < shown)
                    lines << Describe(w, o, file, round);
                else
                    ++more;
            }
        }
    }
    if (more > 0)
        lines << QStringLiteral("mbrun: and %1 more such conflicts\n").arg(more);
    return lines;
}

} // namespace Mbrun
