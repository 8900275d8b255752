// What the file-reader fuzz targets share: a scratch folder made once, whole-file
// reads and writes in it, and a check that no soft assert fired on an input.
// Nothing here changes the working directory: libFuzzer reads the corpus paths
// it was given after the fixture is built.
#pragma once

#include "model/SoftAssert.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace Fuzz {

// Every input is written and saved at least once: in memory when /dev/shm is
// there, since a save syncs the file to the disk.
inline QString ScratchTemplate()
{
    const QFileInfo shm(QStringLiteral("/dev/shm"));
    const QString base = shm.isDir() && shm.isWritable() ? shm.filePath() : QDir::tempPath();
    return base + QStringLiteral("/mb-fuzz-XXXXXX");
}

// Qt warns about input it refuses; that is expected, and soft asserts are
// counted apart (NoSoftAssert).
inline void Quiet()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

inline void WriteAll(const QString& path, const char* data, size_t size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(data, static_cast<qint64>(size)) != static_cast<qint64>(size))
        abort();
}

inline QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        abort();
    return file.readAll();
}

// An application named after the target, widgets on the offscreen platform (no
// display needed), and the scratch folder with the files of a round trip: the
// input, its first save, and the save of what that save loads.
template <class App>
struct Application
{
    Application(const char* target, const char* extension) : name(target)
    {
        if (!dir.isValid())
            abort();
        Quiet();
        const QString suffix = QLatin1Char('.') + QString::fromLatin1(extension);
        input = dir.filePath(QStringLiteral("input") + suffix);
        first = dir.filePath(QStringLiteral("first") + suffix);
        second = dir.filePath(QStringLiteral("second") + suffix);
    }
    // Both saves of a round trip hold the same text.
    void SameSaves() const
    {
        if (ReadAll(first) != ReadAll(second))
            abort();
    }
    // The bytes as a file for a reader of Doc (LoadFile, SaveFile): refused, or
    // loaded and saved, that save loaded and saved again to the same text.
    template <class Doc>
    void RoundTrip(const uint8_t* data, size_t size)
    {
        WriteAll(input, reinterpret_cast<const char*>(data), size);
        {
            Doc doc;
            if (!doc.LoadFile(input))
                return;
            if (!doc.SaveFile(first))
                abort();
        }
        Doc again;
        if (!again.LoadFile(first) || !again.SaveFile(second))
            abort();
        SameSaves();
    }

    int argc = 1;
    QByteArray name;
    char* argv[2] = {name.data(), nullptr};
    bool platform = qputenv("QT_QPA_PLATFORM", "offscreen");
    App app{argc, argv};
    QTemporaryDir dir{ScratchTemplate()};
    QString input, first, second;
};

// A soft assert marks a programmer error: reached from a file, it is a finding.
class NoSoftAssert
{
public:
    ~NoSoftAssert()
    {
        if (Plugin::SoftAssertFailures() != m_before)
            abort();
    }

private:
    int m_before = Plugin::SoftAssertFailures();
};

} // namespace Fuzz
