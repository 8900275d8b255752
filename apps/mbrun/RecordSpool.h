#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

class QTemporaryFile;

namespace Plugin {
class WholeFile;
}

namespace Mbrun {

// The elements of one array of the report, kept on the disk until the report is
// written, so that a long run's records do not pile up in memory. They come in
// any order and go out in index order. The file has no name once open: nothing
// is left behind however mbrun ends.
class RecordSpool
{
public:
    // The spool is made in folder when the first record comes.
    explicit RecordSpool(const QString& folder);
    RecordSpool(const RecordSpool&) = delete;
    RecordSpool& operator=(const RecordSpool&) = delete;
    ~RecordSpool();

    // Keeps text as the element index (0, 1, ...).
    void Put(int index, const QByteArray& text);
    // Writes the array of the elements (only those of indexes, in the order
    // given, when not null) to out. False when the spool lost a record: the
    // reason is ErrorString().
    bool WriteArray(Plugin::WholeFile& out, const std::vector<int>* indexes);
    QString ErrorString() const { return m_error; }

private:
    bool Fail(const QString& reason);

    QString m_folder;
    std::unique_ptr<QTemporaryFile> m_file;
    std::vector<std::pair<qint64, int>> m_at; // index -> offset, length (-1: none)
    qint64 m_end = 0;
    QString m_error;
};

} // namespace Mbrun
