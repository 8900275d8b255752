#include "RecordSpool.h"

#include "model/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <cerrno>

namespace Mbrun {

namespace {

// Qt's indented layout of an empty array, and the line ends around elements, at
// the depth of the report's arrays.
const QByteArray kEmpty = "[\n    ]";

} // namespace

RecordSpool::RecordSpool(const QString& folder) : m_folder(folder) {}

RecordSpool::~RecordSpool() = default;

bool RecordSpool::Fail(const QString& reason)
{
    if (m_error.isEmpty())
        m_error = reason;
    m_file.reset();
    return false;
}

void RecordSpool::Put(int index, const QByteArray& text)
{
    if (!m_error.isEmpty() || index < 0)
        return;
    if (!m_file) {
        // Beside the report: the same disk, and no room in memory taken.
        QDir().mkpath(m_folder);
        m_file = std::make_unique<QTemporaryFile>(QDir(m_folder).filePath(QStringLiteral(".mbrun-report-XXXXXX")));
        if (!m_file->open()) {
            Fail(m_file->errorString());
            return;
        }
        QFile::remove(m_file->fileName());
        m_file->setAutoRemove(false);
    }
    errno = 0;
    if ((m_file->pos() != m_end && !m_file->seek(m_end)) || m_file->write(text) != text.size()) {
        Fail(Plugin::WholeFile::ReasonOf(*m_file, errno));
        return;
    }
    if (size_t(index) >= m_at.size())
        m_at.resize(size_t(index) + 1, {0, -1});
    m_at[size_t(index)] = {m_end, int(text.size())};
    m_end += text.size();
}

bool RecordSpool::WriteArray(Plugin::WholeFile& out, const std::vector<int>* indexes)
{
    if (!m_error.isEmpty())
        return false;
    errno = 0;
    if (m_file && !m_file->flush())
        return Fail(Plugin::WholeFile::ReasonOf(*m_file, errno));
    bool first = true;
    auto put = [&](int index) {
        if (index < 0 || size_t(index) >= m_at.size() || m_at[size_t(index)].second < 0)
            return true;
        const auto [offset, length] = m_at[size_t(index)];
        if (!m_file->seek(offset))
            return Fail(m_file->errorString());
        const QByteArray text = m_file->read(length);
        if (text.size() != length)
            return Fail(m_file->errorString());
        out.Write(first ? QByteArrayLiteral("[\n") + text : QByteArrayLiteral(",\n") + text);
        first = false;
        return true;
    };
    if (indexes) {
        for (int index : *indexes)
            if (!put(index))
                return false;
    } else {
        for (size_t index = 0; index < m_at.size(); ++index)
            if (!put(int(index)))
                return false;
    }
    out.Write(first ? kEmpty : QByteArrayLiteral("\n    ]"));
    return true;
}

} // namespace Mbrun
