#include "ReportWriter.h"

#include "model/WholeFile.h"

#include <QDir>
#include <QHash>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

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

QJsonObject roundObject(const RunRecorder::Round& r)
{
    QJsonObject o;
    o.insert(QStringLiteral("round"), r.index);
    o.insert(QStringLiteral("iterator"), r.iterator);
    o.insert(QStringLiteral("file"), r.file);
    o.insert(QStringLiteral("files"), pairsObject(r.files));
    o.insert(QStringLiteral("status"), r.failed        ? QStringLiteral("failed")
                                       : r.interrupted ? QStringLiteral("interrupted")
                                                       : QStringLiteral("succeeded"));
    if (r.failed) {
        QJsonArray failedSteps;
        for (const auto& step : r.failedSteps)
            failedSteps.append(step.second);
        o.insert(QStringLiteral("failedSteps"), failedSteps);
    }
    return o;
}

// o as an element of one of the report's arrays, laid out as the whole report
// is: indented by four spaces a level, at the depth of the array's elements.
QByteArray elementText(const QJsonObject& o)
{
    QByteArray text = QJsonDocument(o).toJson(QJsonDocument::Indented);
    text.chop(1); // its last line end
    return "        " + text.replace('\n', "\n        ");
}

} // namespace

ReportWriter::ReportWriter(const QString& path, const QString& modelPath)
    : m_path(path), m_modelPath(modelPath), m_steps(QFileInfo(path).absolutePath()),
      m_rounds(QFileInfo(path).absolutePath())
{
}

void ReportWriter::AddStep(const RunRecorder::Step& step)
{
    m_steps.Put(step.order, elementText(stepObject(step)));
}

void ReportWriter::AddRound(const RunRecorder::Round& round)
{
    m_rounds.Put(round.index - 1, elementText(roundObject(round)));
    if (round.failed)
        m_failedRounds.push_back(round.index - 1);
}

void ReportWriter::Merge(const QJsonObject& report, bool withoutPrologue)
{
    m_merged = true;
    const QStringList counted = {QStringLiteral("steps"), QStringLiteral("succeeded"), QStringLiteral("failed"),
                                 QStringLiteral("skipped"), QStringLiteral("interrupted"), QStringLiteral("unfinished"),
                                 QStringLiteral("rounds")};
    const QJsonObject summary = report.value(QStringLiteral("summary")).toObject();
    for (const QString& key : counted)
        m_mergedSummary.insert(key, m_mergedSummary.value(key).toInt() + summary.value(key).toInt());
    for (const QJsonValue& v : report.value(QStringLiteral("steps")).toArray()) {
        const QJsonObject step = v.toObject();
        if (withoutPrologue && step.value(QStringLiteral("round")).isNull()) {
            // Left out by that run: no step of the batch.
            const QString status = step.value(QStringLiteral("status")).toString();
            m_mergedSummary.insert(QStringLiteral("steps"), m_mergedSummary.value(QStringLiteral("steps")).toInt() - 1);
            m_mergedSummary.insert(status, m_mergedSummary.value(status).toInt() - 1);
            continue;
        }
        m_steps.Put(m_mergedSteps++, elementText(step));
    }
    for (const QJsonValue& v : report.value(QStringLiteral("rounds")).toArray()) {
        const QJsonObject round = v.toObject();
        const int index = round.value(QStringLiteral("round")).toInt() - 1;
        if (index < 0)
            continue;
        m_rounds.Put(index, elementText(round));
        if (round.value(QStringLiteral("status")).toString() == QLatin1String("failed"))
            m_failedRounds.push_back(index);
    }
    const QJsonObject leftOut = report.value(QStringLiteral("leftOutFiles")).toObject();
    for (auto it = leftOut.begin(); it != leftOut.end(); ++it)
        if (!m_mergedLeftOut.contains(it.key()))
            m_mergedLeftOut.insert(it.key(), it.value());
}

bool ReportWriter::Write(const RunRecorder* recorder, Outcome outcome, int exitCode, const QString& signalName,
                         QString* error)
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

    QJsonObject summary;
    using S = RunRecorder::Status;
    summary.insert(QStringLiteral("steps"), recorder ? recorder->StepCount() : 0);
    for (S s : {S::Succeeded, S::Failed, S::Skipped, S::Interrupted, S::Unfinished})
        summary.insert(RunRecorder::StatusText(s), recorder ? recorder->Count(s) : 0);
    summary.insert(QStringLiteral("rounds"), recorder ? recorder->RoundCount() : 0);
    if (!recorder && m_merged)
        for (auto it = m_mergedSummary.begin(); it != m_mergedSummary.end(); ++it)
            summary.insert(it.key(), it.value());
    summary.insert(QStringLiteral("failedRounds"), int(m_failedRounds.size()));
    root.insert(QStringLiteral("summary"), summary);
    QJsonObject leftOut = m_mergedLeftOut;
    if (recorder)
        for (const auto& group : recorder->LeftOut().Groups())
            leftOut.insert(group.first, QJsonArray::fromStringList(group.second));
    root.insert(QStringLiteral("leftOutFiles"), leftOut);

    // The long arrays come from the spools: the document is laid out with them
    // empty, and each is written in its place.
    std::vector<int> failedRounds = m_failedRounds;
    std::sort(failedRounds.begin(), failedRounds.end());
    struct Array
    {
        QByteArray name;
        RecordSpool* spool;
        const std::vector<int>* indexes;
        int at = -1;
    };
    std::vector<Array> arrays = {{"failedRounds", &m_rounds, &failedRounds},
                                 {"rounds", &m_rounds, nullptr},
                                 {"steps", &m_steps, nullptr}};
    for (const Array& a : arrays)
        root.insert(QString::fromLatin1(a.name), QJsonArray());
    const QByteArray text = QJsonDocument(root).toJson(QJsonDocument::Indented);
    for (Array& a : arrays)
        a.at = text.indexOf("\n    \"" + a.name + "\": [\n    ]");
    std::sort(arrays.begin(), arrays.end(), [](const Array& a, const Array& b) { return a.at < b.at; });

    // Like the host's outputs, the report gets the folder it names.
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    Plugin::WholeFile file(m_path);
    file.Open();
    int done = 0;
    for (const Array& a : arrays) {
        const QByteArray head = "\n    \"" + a.name + "\": ";
        file.Write(text.mid(done, a.at - done) + head);
        if (!a.spool->WriteArray(file, a.indexes)) {
            *error = a.spool->ErrorString();
            return false;
        }
        done = a.at + head.size() + 7; // past the empty array's text
    }
    file.Write(text.mid(done));
    if (!file.Commit()) {
        *error = file.ErrorString();
        return false;
    }
    return true;
}

} // namespace Mbrun
