#include "ReportWriter.h"

#include <QDir>
#include <QHash>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace Mbrun {

namespace {

QJsonValue timeText(const QDateTime& t)
{
    return t.isValid() ? QJsonValue(t.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

QJsonObject pairsObject(const QList<QPair<QString, QString>>& pairs)
{
    QJsonObject o;
    for (const auto& p : pairs)
        o.insert(p.first, p.second);
    return o;
}

QString outcomeText(ReportWriter::Outcome outcome)
{
    switch (outcome) {
    case ReportWriter::Outcome::Succeeded: return QStringLiteral("succeeded");
    case ReportWriter::Outcome::Failed: return QStringLiteral("failed");
    case ReportWriter::Outcome::Refused: return QStringLiteral("refused");
    case ReportWriter::Outcome::Stalled: return QStringLiteral("stalled");
    case ReportWriter::Outcome::Interrupted: return QStringLiteral("interrupted");
    }
    return QString();
}

QJsonObject stepObject(const RunRecorder::Step& s)
{
    QJsonObject o;
    o.insert(QStringLiteral("step"), s.description);
    o.insert(QStringLiteral("id"), s.id);
    o.insert(QStringLiteral("algorithm"), s.algorithm);
    o.insert(QStringLiteral("round"), s.round > 0 ? QJsonValue(s.round) : QJsonValue());
    o.insert(QStringLiteral("parameters"), pairsObject(s.parameters));
    o.insert(QStringLiteral("start"), timeText(s.start));
    o.insert(QStringLiteral("end"), timeText(s.end));
    o.insert(QStringLiteral("status"), RunRecorder::StatusText(s.status));
    o.insert(QStringLiteral("errorCode"), s.errorCode);
    o.insert(QStringLiteral("errorMessage"), s.errorMessage);
    o.insert(QStringLiteral("outputs"), QJsonArray::fromStringList(s.outputs));
    o.insert(QStringLiteral("written"), QJsonArray::fromStringList(s.written));
    return o;
}

QJsonObject roundObject(const RunRecorder::Round& r, const QHash<int, QJsonArray>& failedSteps)
{
    QJsonObject o;
    o.insert(QStringLiteral("round"), r.index);
    o.insert(QStringLiteral("iterator"), r.iterator);
    o.insert(QStringLiteral("file"), r.file);
    o.insert(QStringLiteral("files"), pairsObject(r.files));
    o.insert(QStringLiteral("status"), r.failed        ? QStringLiteral("failed")
                                       : r.interrupted ? QStringLiteral("interrupted")
                                                       : QStringLiteral("succeeded"));
    if (r.failed)
        o.insert(QStringLiteral("failedSteps"), failedSteps.value(r.index));
    return o;
}

} // namespace

ReportWriter::ReportWriter(const QString& path, const QString& modelPath) : m_path(path), m_modelPath(modelPath) {}

bool ReportWriter::Write(const RunRecorder* recorder, Outcome outcome, int exitCode, const QString& signalName,
                         QString* error) const
{
    QJsonObject root;
    root.insert(QStringLiteral("format"), QStringLiteral("mbrun-report/1"));
    root.insert(QStringLiteral("model"), QFileInfo(m_modelPath).absoluteFilePath());
    root.insert(QStringLiteral("inputs"), pairsObject(m_inputs));
    root.insert(QStringLiteral("resume"), m_resume);
    root.insert(QStringLiteral("started"), timeText(m_started));
    root.insert(QStringLiteral("ended"), timeText(QDateTime::currentDateTimeUtc()));
    root.insert(QStringLiteral("status"), outcomeText(outcome));
    root.insert(QStringLiteral("exitCode"), exitCode);
    root.insert(QStringLiteral("signal"), signalName.isEmpty() ? QJsonValue() : QJsonValue(signalName));
    root.insert(QStringLiteral("messages"), QJsonArray::fromStringList(m_messages));

    QJsonArray steps, rounds, failedRounds;
    QJsonObject summary;
    using S = RunRecorder::Status;
    summary.insert(QStringLiteral("steps"), recorder ? int(recorder->Steps().size()) : 0);
    for (S s : {S::Succeeded, S::Failed, S::Skipped, S::Interrupted, S::Unfinished})
        summary.insert(RunRecorder::StatusText(s), recorder ? recorder->Count(s) : 0);
    if (recorder) {
        QHash<int, QJsonArray> failedSteps; // round -> descriptions of its failed steps
        for (const RunRecorder::Step& s : recorder->Steps()) {
            steps.append(stepObject(s));
            if (s.round > 0 && s.status == S::Failed)
                failedSteps[s.round].append(s.description);
        }
        for (const RunRecorder::Round& r : recorder->Rounds()) {
            const QJsonObject o = roundObject(r, failedSteps);
            rounds.append(o);
            if (r.failed)
                failedRounds.append(o);
        }
    }
    summary.insert(QStringLiteral("rounds"), rounds.size());
    summary.insert(QStringLiteral("failedRounds"), failedRounds.size());
    root.insert(QStringLiteral("summary"), summary);
    root.insert(QStringLiteral("rounds"), rounds);
    root.insert(QStringLiteral("failedRounds"), failedRounds);
    root.insert(QStringLiteral("steps"), steps);
    QJsonObject leftOut;
    if (recorder)
        for (const auto& group : recorder->LeftOut().Groups())
            leftOut.insert(group.first, QJsonArray::fromStringList(group.second));
    root.insert(QStringLiteral("leftOutFiles"), leftOut);

    // Like the host's outputs, the report gets the folder it names.
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(root).toJson(QJsonDocument::Indented)) < 0 ||
        !file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

} // namespace Mbrun
