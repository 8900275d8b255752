#pragma once

#include "engine/APCIterator.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QStringList>

namespace Plugin {

// Hands out one set of files per execution. The first execution scans the
// directories of "strDir" and pairs the files of the outputs named in "strFilter"
// through the text their wildcards capture.
class APCFileIterator : public APCIterator
{
public:
    // Creates "strDir" and "strFilter" and the outputs of the default filter.
    APCFileIterator();

    APCObject* Clone() override;
    bool Check() override;
    // Writes the next round into the output vars; at the end reports code -1.
    bool Execute() override;

    // Keeps the output parameters in line with the filter's keys.
    bool RefreshOutputs();
    // Scans the directories and builds the rounds still to hand out.
    bool BuildRounds();
    // The rounds left (output name -> file path).
    QList<QMap<QString, QString>> GetRounds() const { return m_rounds; }
    // The files the last scan found for an output that no round holds, in scan
    // order, then the hidden files a filter matches, which no round takes; each
    // scan's are handed over once, so a rescan's come anew.
    QStringList TakeUnusedFiles();
    // The enabled directories the scan reads, in its order, as "strDir" now gives
    // them (through its var when it is a reference); they need not exist.
    QStringList GetScannedDirectories() const;
    // Hands out only the rounds first to last (1, 2, ... in the scan's order), as
    // many of them as the scan finds; first 0, the default, hands out every round.
    // Copied by Clone, so a run's clone keeps it.
    void SetRoundRange(int first, int last)
    {
        m_firstRound = first;
        m_lastRound = last;
    }

protected:
    void CopyFileIteratorFrom(const APCFileIterator& other);

private:
    struct Directory
    {
        QString path;
        bool subdir = false;
        bool enabled = false;
    };
    using Filter = QPair<QString, QString>; // output name, patterns

    QString ParameterText(const QString& name) const;
    static QList<Directory> ParseDirectories(const QString& text);
    static QList<Filter> ParseFilters(const QString& text);
    static QStringList FindFiles(const QString& path, const QString& filter, bool recursive);
    static QStringList CaptureWildcards(const QString& path, const QString& filter);
    static bool ContainsAll(const QString& path, const QStringList& captures);

    QList<QMap<QString, QString>> m_rounds; // not copied by Clone
    QStringList m_unused;                    // not copied by Clone
    double m_total = 0;
    int m_firstRound = 0;
    int m_lastRound = 0;
    QStringList m_spare; // copied with the object, otherwise unused
};

} // namespace Plugin
