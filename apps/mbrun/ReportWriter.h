#pragma once

#include "RecordSpool.h"
#include "RunRecorder.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <vector>

namespace Mbrun {

// The JSON report of one mbrun invocation (format "mbrun-report/1", described in
// the README): what was asked, how it ended, every step of every round, the
// failed rounds. The records of steps and rounds go to the disk as they end; the
// report is put together from them at the end, whole or not at all.
class ReportWriter
{
public:
    // The run's outcome, as the exit code tells it.
    enum class Outcome { Succeeded, Failed, Refused, Stalled, Interrupted };

    ReportWriter(const QString& path, const QString& modelPath);

    void SetInputs(const QList<QPair<QString, QString>>& inputs) { m_inputs = inputs; }
    void SetResume(bool resume) { m_resume = resume; }
    void SetStarted(const QDateTime& started) { m_started = started; }
    // Adds one of mbrun's own messages (why a run was refused, warnings).
    void AddMessage(const QString& message) { m_messages << message; }
    // Keeps the record of a step that ended, or of a round.
    void AddStep(const RunRecorder::Step& step);
    void AddRound(const RunRecorder::Round& round);
    // Takes the rounds, steps, counts and left-out files of the report of a run
    // of one round (--round), in the order the runs are given. With
    // withoutPrologue, the steps outside any round, which that run left out, are
    // not taken. Write() then counts what was merged when given no recorder.
    void Merge(const QJsonObject& report, bool withoutPrologue);
    // Writes the report; the recorder may be null when nothing ran. signalName is
    // empty unless a signal stopped the run. False with error set when the file
    // cannot be written.
    bool Write(const RunRecorder* recorder, Outcome outcome, int exitCode, const QString& signalName, QString* error);

private:
    QString m_path;
    QString m_modelPath;
    QList<QPair<QString, QString>> m_inputs;
    QStringList m_messages;
    QDateTime m_started;
    bool m_resume = false;
    RecordSpool m_steps;               // by Step::order
    RecordSpool m_rounds;              // by Round::index - 1
    std::vector<int> m_failedRounds;   // their places in m_rounds
    bool m_merged = false;
    int m_mergedSteps = 0;             // the next place in m_steps
    QJsonObject m_mergedSummary;
    QJsonObject m_mergedLeftOut;
};

} // namespace Mbrun
