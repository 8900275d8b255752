#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QFileDevice;
class QSaveFile;

namespace Plugin {

// A file we own, written whole or not at all: every write, the flush and the sync
// to the disk are checked, and the new text takes the old file's place only once
// all of it is on the disk. On any failure the old file stays as it was and
// ErrorString() gives the system's reason. Every saver writes through it: models,
// tool boxes, mbrun's report and state.
class WholeFile
{
public:
    explicit WholeFile(const QString& path);
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;
    // Drops a file not committed; the old one stays.
    ~WholeFile();

    // Starts the new text. False when it cannot be written anywhere.
    bool Open();
    // Appends bytes. After the first failure every call is false and writes nothing.
    bool Write(const QByteArray& bytes);
    // Puts the new text in place once complete and on the disk; false, with the
    // old file untouched, when anything failed on the way.
    bool Commit();
    // The system's reason for the first failure; empty while none.
    QString ErrorString() const { return m_error; }

    // Writes bytes to path whole or not at all; false with the reason in error.
    static bool Save(const QString& path, const QByteArray& bytes, QString* error = nullptr);
    // Copies source to target the same way.
    static bool Copy(const QString& source, const QString& target, QString* error = nullptr);
    // Why a call on file failed: Qt's words, or where a short write left it none,
    // the system's for error, the errno taken at once after the call.
    static QString ReasonOf(const QFileDevice& file, int error);

private:
    bool Fail(const QString& reason);
    // Where no file can be made beside the old one (a writable file in a read-only
    // folder), the text goes over the old one in place, which is put back on failure.
    bool CommitInPlace();

    QString m_path;
    std::unique_ptr<QSaveFile> m_file;
    bool m_inPlace = false;
    QByteArray m_text; // the new text, gathered when it is to go in place
    QString m_error;
};

} // namespace Plugin
