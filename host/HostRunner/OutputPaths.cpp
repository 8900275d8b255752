#include "HostRunner/OutputPaths.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>

namespace HostRunner {

QString SystemPath(const QString& path)
{
    if (path.isEmpty())
        return path;
    // Not QDir's absolute paths: they drop ".." from the text, which is not where a
    // ".." after a symbolic link leads.
    const QString absolute = QDir::isAbsolutePath(path) ? path : QDir::currentPath() + QLatin1Char('/') + path;
    const QStringList parts = absolute.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (int n = parts.size(); n >= 0; --n) {
        const QString prefix = QLatin1Char('/') + parts.mid(0, n).join(QLatin1Char('/'));
        char resolved[PATH_MAX];
        if (!::realpath(QFile::encodeName(prefix).constData(), resolved))
            continue;
        const QString base = QFile::decodeName(resolved);
        if (n == parts.size())
            return base;
        // What does not exist yet holds no link: its ".." is the folder before it.
        return QDir::cleanPath(base + QLatin1Char('/') + parts.mid(n).join(QLatin1Char('/')));
    }
    return QDir::cleanPath(absolute);
}

bool MakeFolders(const QString& path, QString* error)
{
    QString prefix = path.startsWith(QLatin1Char('/')) ? QStringLiteral("/") : QString();
    for (const QString& part : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        prefix += part;
        const QByteArray name = QFile::encodeName(prefix);
        if (::mkdir(name.constData(), 0777) != 0) {
            const int why = errno;
            struct stat st = {};
            if (why != EEXIST || ::stat(name.constData(), &st) != 0 || !S_ISDIR(st.st_mode)) {
                *error = QStringLiteral("%1: %2").arg(prefix, why == EEXIST ? QStringLiteral("not a folder") : qt_error_string(why));
                return false;
            }
        }
        prefix += QLatin1Char('/');
    }
    return true;
}

} // namespace HostRunner
