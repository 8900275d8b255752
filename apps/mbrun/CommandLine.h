#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace Mbrun {

// mbrun's arguments, read once: what to do and the values to do it with.
class CommandLine
{
public:
    enum class Action { Run, List, ListRounds, Export, Algorithms, Help };

    // False with Error() set when the arguments make no sense together.
    bool Parse(const QStringList& arguments);
    QString Error() const { return m_error; }
    static QString Usage();

    Action GetAction() const { return m_action; }
    QString ModelPath() const { return m_modelPath; }
    // NAME=VALUE pairs of --set, in order.
    const QList<QPair<QString, QString>>& Settings() const { return m_settings; }
    bool DryRun() const { return m_dryRun; }
    bool Resume() const { return m_resume; }
    // Resuming one of the rounds of a run that holds the state files for them.
    bool StateHeld() const { return m_stateHeld; }
    // One of the children of a --jobs run: marks each round's end on standard
    // error (RoundEndMark) for the run's progress line.
    bool RoundMarks() const { return m_roundMarks; }
    static const QString& RoundEndMark();
    // Empty when no report was asked for.
    QString ReportPath() const { return m_reportPath; }
    // --list-rounds as JSON.
    bool Json() const { return m_json; }
    // The one round to run (1, 2, ...), or the first of a range; 0 for all.
    int Round() const { return m_round; }
    // The last round of the range to run (Round() for one).
    int LastRound() const { return m_lastRound; }
    // With Round(): leave the steps outside the iterator out.
    bool NoPrologue() const { return m_noPrologue; }
    // With Round(): run the steps outside the iterator even where their outputs exist.
    bool WithPrologue() const { return m_withPrologue; }
    // How many rounds run at a time; 0 for one per core.
    int Jobs() const { return m_jobs; }
    // The driving file of the one round to run; empty for none.
    QString RoundFile() const { return m_roundFile; }
    // Run the steps outside the iterator only.
    bool PrologueOnly() const { return m_prologueOnly; }
    // The folder --export writes the workflow into.
    QString ExportDir() const { return m_exportDir; }

private:
    bool Fail(const QString& error);

    Action m_action = Action::Run;
    QString m_modelPath;
    QList<QPair<QString, QString>> m_settings;
    bool m_dryRun = false;
    bool m_resume = false;
    bool m_stateHeld = false;
    bool m_roundMarks = false;
    QString m_reportPath;
    bool m_json = false;
    int m_round = 0;
    int m_lastRound = 0;
    bool m_noPrologue = false;
    bool m_withPrologue = false;
    int m_jobs = 1;
    QString m_roundFile;
    bool m_prologueOnly = false;
    QString m_exportDir;
    QString m_error;
};

} // namespace Mbrun
