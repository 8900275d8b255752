#include "engine/APCFileIterator.h"

#include "engine/FirstOccurrence.h"

#include "HostCatalog/GetParamValue.h"
#include "model/APCModel.h"
#include "model/APCVar.h"
#include "model/VarReference.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include <dirent.h>

namespace Plugin {

namespace {

const QString kDir = QStringLiteral("strDir");
const QString kFilter = QStringLiteral("strFilter");

QJsonObject parseObject(const QString& text, bool* ok)
{
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(text.toLocal8Bit(), &error);
    *ok = error.error == QJsonParseError::NoError && doc.isObject();
    return doc.object();
}

// Whether the folder holds any name starting with a dot (a hidden file on this system).
// Hidden files are rare: a folder of thousands of scenes is not listed, stat'ed and
// sorted a second time only to find none. Unreadable: say yes and let QDir decide.
bool holdsDotNames(const QString& path)
{
    DIR* dir = opendir(QFile::encodeName(path).constData());
    if (!dir)
        return true;
    bool found = false;
    while (const dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' && std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
            found = true;
            break;
        }
    }
    closedir(dir);
    return found;
}

// The hidden files of path (and of the subfolders FindFiles reads, when recursive)
// that filter matches: never iterated, but a batch should know they were there.
QStringList findHiddenFiles(const QString& path, const QString& filter, bool recursive)
{
    QStringList result;
    const QDir dir(path);
    const QStringList patterns = filter.split(QLatin1Char(';'), Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (holdsDotNames(path))
        for (const QFileInfo& info : dir.entryInfoList(patterns, QDir::Files | QDir::Hidden | QDir::NoSymLinks))
            if (info.isHidden())
                result.append(info.absoluteFilePath());
    if (recursive)
        for (const QFileInfo& sub : dir.entryInfoList(QDir::AllDirs | QDir::NoDot | QDir::NoDotDot))
            result += findHiddenFiles(sub.absoluteFilePath(), filter, recursive);
    return result;
}

} // namespace

APCFileIterator::APCFileIterator()
{
    APCParameter dir;
    dir.name = kDir;
    dir.type = QStringLiteral("multiDirectory");
    dir.description = QCoreApplication::translate("APCFileIterator", "MultiDirectory");
    APCParameter filter;
    filter.name = kFilter;
    filter.type = QStringLiteral("filter");
    filter.description = QCoreApplication::translate("APCFileIterator", "Filter");
    filter.defaultValue = QStringLiteral("{\"Out File\":\"*.*\"}");
    filter.value = filter.defaultValue;
    GetParameters() << dir << filter;
    RefreshOutputs();
}

void APCFileIterator::CopyFileIteratorFrom(const APCFileIterator& other)
{
    CopyIteratorFrom(other);
    m_total = other.m_total;
    m_firstRound = other.m_firstRound;
    m_lastRound = other.m_lastRound;
    m_spare = other.m_spare;
}

APCObject* APCFileIterator::Clone()
{
    auto* copy = new APCFileIterator;
    copy->CopyFileIteratorFrom(*this);
    return copy;
}

bool APCFileIterator::Check()
{
    return !GetParameter(kDir).value.isEmpty() && !GetParameter(kFilter).value.isEmpty();
}

bool APCFileIterator::RefreshOutputs()
{
    const QString text = GetParameter(kFilter).value;
    if (IsVarReference(text))
        return false;
    const QList<Filter> filters = ParseFilters(text);
    if (filters.isEmpty())
        return false;
    QSet<QString> keys;
    for (const Filter& f : filters)
        keys.insert(f.first);
    QList<APCParameter>& params = GetParameters();
    for (int i = params.size() - 1; i >= 0; --i) {
        const QString& name = params[i].name;
        if (name != kDir && name != kFilter && !keys.contains(name))
            params.removeAt(i);
    }
    for (const Filter& f : filters) {
        if (GetParameter(f.first).name == f.first)
            continue;
        APCParameter out;
        out.name = f.first;
        out.description = f.first;
        out.type = QStringLiteral("file");
        out.direction = 1;
        out.value = VarReferenceTo(QUuid::createUuid().toString());
        params.append(out);
    }
    return true;
}

QString APCFileIterator::ParameterText(const QString& name) const
{
    return RunValueOf(GetModel(), GetParameter(name).value);
}

QList<APCFileIterator::Directory> APCFileIterator::ParseDirectories(const QString& text)
{
    QList<Directory> result;
    bool ok = false;
    const QJsonObject object = parseObject(text, &ok);
    if (!ok)
        return result;
    for (const QString& key : object.keys()) {
        Directory d;
        d.path = key;
        d.subdir = GetParamValue(object, {key, QStringLiteral("subdir")}) == QLatin1String("1");
        d.enabled = GetParamValue(object, {key, QStringLiteral("enabled")}) == QLatin1String("1");
        result.append(d);
    }
    return result;
}

QList<APCFileIterator::Filter> APCFileIterator::ParseFilters(const QString& text)
{
    QList<Filter> result;
    bool ok = false;
    const QJsonObject object = parseObject(text, &ok);
    if (!ok)
        return result;
    for (const QString& key : object.keys())
        result.append(Filter(key, GetParamValue(object, {key})));
    return result;
}

QStringList APCFileIterator::FindFiles(const QString& path, const QString& filter, bool recursive)
{
    QStringList result;
    if (path.isEmpty())
        return result;
    QDir dir(path);
    if (!dir.exists())
        return result;
    const QStringList patterns = filter.split(QLatin1Char(';'), Qt::KeepEmptyParts, Qt::CaseSensitive);
    for (const QFileInfo& info : dir.entryInfoList(patterns, QDir::Files | QDir::NoSymLinks))
        result.append(info.absoluteFilePath());
    if (recursive)
        for (const QFileInfo& sub : dir.entryInfoList(QDir::AllDirs | QDir::NoDot | QDir::NoDotDot))
            result += FindFiles(sub.absoluteFilePath(), filter, recursive);
    return result;
}

QStringList APCFileIterator::CaptureWildcards(const QString& path, const QString& filter)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    const QString suffix = file.suffix();
    for (const QString& pattern : filter.split(QLatin1Char(';'), Qt::KeepEmptyParts, Qt::CaseSensitive)) {
        if (QFileInfo(pattern).suffix().compare(suffix, Qt::CaseInsensitive) != 0)
            continue;
        QString core = pattern;
        while (core.startsWith(QLatin1Char('*')))
            core.remove(0, 1);
        while (core.endsWith(QLatin1Char('*')))
            core.chop(1);
        QList<int> silent;
        int counter = 0;
        for (int i = 0; i < core.size(); ++i) {
            if (core[i] != QLatin1Char('*'))
                continue;
            if (i == 0 || core[i - 1] != QLatin1Char('*'))
                ++counter;
            else
                silent.append(counter);
        }
        const QStringList segments = QString(core)
                                         .replace(QStringLiteral("**"), QStringLiteral("*"))
                                         .split(QLatin1Char('*'), Qt::KeepEmptyParts, Qt::CaseSensitive);
        QStringList captures;
        int pos = -1;
        bool matched = true;
        for (const QString& segment : segments) {
            const int at = name.indexOf(segment, pos < 0 ? 0 : pos, Qt::CaseSensitive);
            if (at < 0) {
                matched = false;
                break;
            }
            if (!(pos == -1 && segments.size() > 1))
                captures.append(name.mid(pos < 0 ? 0 : pos, at - (pos < 0 ? 0 : pos)));
            pos = at + segment.size();
        }
        if (!matched)
            continue;
        for (int k : silent)
            if (k - 1 >= 0 && k - 1 < captures.size())
                captures.removeAt(k - 1);
        return captures;
    }
    return QStringList();
}

bool APCFileIterator::ContainsAll(const QString& path, const QStringList& captures)
{
    if (captures.isEmpty())
        return false;
    const QString name = QFileInfo(path).fileName();
    for (const QString& c : captures)
        if (!name.contains(c, Qt::CaseSensitive))
            return false;
    return true;
}

QStringList APCFileIterator::GetScannedDirectories() const
{
    QStringList paths;
    for (const Directory& d : ParseDirectories(ParameterText(kDir)))
        if (d.enabled)
            paths.append(d.path);
    return paths;
}

bool APCFileIterator::BuildRounds()
{
    m_rounds.clear();
    m_unused.clear();
    const QList<Directory> directories = ParseDirectories(ParameterText(kDir));
    const QList<Filter> filters = ParseFilters(ParameterText(kFilter));
    if (directories.isEmpty() || filters.isEmpty())
        return false;
    struct Group
    {
        QString key;
        QString filter;
        QStringList files;
        // The file names joined by line feeds, and where each starts: the first
        // name holding a capture is then one substring search away.
        QString joined;
        std::vector<int> starts;
        bool plainNames = true; // no line feed inside a name
        std::shared_ptr<const FirstOccurrence> index; // over joined

        // The first file (in list order) whose name contains every capture, or -1.
        int FirstContaining(const QStringList& captures) const
        {
            if (!plainNames) {
                for (int i = 0; i < files.size(); ++i)
                    if (ContainsAll(files[i], captures))
                        return i;
                return -1;
            }
            const QString* longest = &captures.first();
            for (const QString& c : captures)
                if (c.size() > longest->size())
                    longest = &c;
            int from = 0;
            while (from < joined.size()) {
                const int at = longest->isEmpty() ? from
                               : from == 0     ? index->IndexOf(*longest)
                                               : joined.indexOf(*longest, from);
                if (at < 0)
                    return -1;
                const int i = int(std::upper_bound(starts.begin(), starts.end(), at) - starts.begin()) - 1;
                if (i < 0 || i >= files.size())
                    return -1;
                const int end = i + 1 < int(starts.size()) ? starts[i + 1] - 1 : joined.size();
                if (at + longest->size() <= end && ContainsAll(files[i], captures))
                    return i;
                from = i + 1 < int(starts.size()) ? starts[i + 1] : joined.size();
            }
            return -1;
        }
    };
    for (const Directory& d : directories) {
        if (!d.enabled || !QDir(d.path).exists())
            continue;
        QList<Group> groups;
        for (const Filter& f : filters) {
            Group g;
            g.key = f.first;
            g.filter = f.second;
            g.files = FindFiles(d.path, f.second, d.subdir);
            for (const QString& file : g.files) {
                const QString name = QFileInfo(file).fileName();
                g.plainNames = g.plainNames && !name.contains(QLatin1Char('\n'));
                g.starts.push_back(g.joined.size());
                g.joined += name;
                g.joined += QLatin1Char('\n');
            }
            g.index = std::make_shared<const FirstOccurrence>(g.joined);
            groups.append(g);
        }
        const Group& first = groups.first();
        QSet<QString> used;
        for (const QString& file : first.files) {
            const QStringList captures = CaptureWildcards(file, first.filter);
            if (captures.isEmpty())
                continue; // ContainsAll is false for every file
            QMap<QString, QString> round;
            bool complete = true;
            for (const Group& g : groups) {
                const int hit = g.FirstContaining(captures);
                if (hit < 0) {
                    complete = false;
                    break;
                }
                round.insert(g.key, g.files[hit]);
            }
            if (complete && !round.isEmpty()) {
                for (const QString& f : round)
                    used.insert(f);
                m_rounds.append(round);
            }
        }
        // The pairing keeps the first match only: note what it left out, so that
        // a batch can say which files of the folders were never processed.
        for (const Group& g : groups)
            for (const QString& f : g.files)
                if (!used.contains(f)) {
                    used.insert(f); // a file two filters match is named once
                    m_unused.append(f);
                }
        for (const Filter& f : filters)
            for (const QString& hidden : findHiddenFiles(d.path, f.second, d.subdir))
                if (!used.contains(hidden)) {
                    used.insert(hidden);
                    m_unused.append(hidden);
                }
    }
    return true;
}

QStringList APCFileIterator::TakeUnusedFiles()
{
    QStringList unused;
    unused.swap(m_unused);
    return unused;
}

bool APCFileIterator::Execute()
{
    if (GetIteratorState() == NotRun) {
        // A setting that names a var the model does not have cannot be read: say
        // so instead of iterating over nothing.
        for (const QString& name : {kDir, kFilter}) {
            const QString value = GetParameter(name).value;
            if (!IsVarReference(value))
                continue;
            const QString id = ReferencedVarId(value);
            if (!ReferencedVar(GetModel(), value)) {
                SetError(-2, QCoreApplication::translate("APCFileIterator", "The setting %1 names the variable %2, which the model does not have")
                                 .arg(GetParameter(name).description, id));
                return false;
            }
        }
        BuildRounds();
        if (m_firstRound > 0) // rounds of a batch run on their own: the same files as in the whole run
            m_rounds = m_rounds.mid(m_firstRound - 1, std::max(0, m_lastRound - m_firstRound + 1));
        m_total = m_rounds.size();
    }
    if (m_rounds.isEmpty()) {
        SetError(-1, QCoreApplication::translate("APCFileIterator", "End of the iteration"));
        SetIteratorState(Ended);
        Progress(100.0, QString(), nullptr);
        return false;
    }
    SetIteratorState(Iterating);
    const QMap<QString, QString> round = m_rounds.takeFirst();
    for (auto it = round.constBegin(); it != round.constEnd(); ++it) {
        const QString id = ReferencedVarId(GetParameter(it.key()).value);
        APCVar* var = GetModel() ? GetModel()->FindVar(id) : nullptr;
        if (!var) {
            // An output that feeds no var cannot hand out its file: say so
            // instead of writing nowhere.
            SetError(-2, QCoreApplication::translate("APCFileIterator", "The output %1 is not connected to a variable")
                             .arg(it.key()));
            return false;
        }
        var->SetRunValue(it.value());
    }
    Progress((m_total - m_rounds.size()) / m_total * 100.0, QString(), nullptr);
    return true;
}

} // namespace Plugin
