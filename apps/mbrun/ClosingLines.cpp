#include "ClosingLines.h"

#include "RunRecorder.h"

#include "engine/APCFileIterator.h"
#include "engine/SequenceNode.h"
#include "model/VarReference.h"

#include <QDir>

namespace Mbrun {

using Status = RunRecorder::Status;

QStringList ClosingLines::EmptyIterators(const RunRecorder& recorder)
{
    QStringList lines;
    for (Plugin::SequenceNode* node : recorder.EmptyIterators())
        lines << EmptyIterator(static_cast<Plugin::APCFileIterator*>(node->GetProcess()));
    return lines;
}

QString ClosingLines::EmptyIterator(Plugin::APCFileIterator* iterator)
{
    const QString name = iterator->GetDescription();
    const QStringList folders = iterator->GetScannedDirectories();
    if (folders.isEmpty())
        return QStringLiteral("mbrun: warning: the iterator \"%1\" has no folder to read: its folders are given as \"%2\"\n")
            .arg(name, Plugin::RunValueOf(iterator->GetModel(), iterator->GetParameter(QStringLiteral("strDir")).value));
    QStringList named;
    for (const QString& f : folders)
        named << (QDir(f).exists() ? f : QStringLiteral("%1 (no such folder)").arg(f));
    return QStringLiteral("mbrun: warning: the iterator \"%1\" found no files in %2 (filter %3)\n")
        .arg(name, named.join(QStringLiteral(", ")),
             Plugin::RunValueOf(iterator->GetModel(), iterator->GetParameter(QStringLiteral("strFilter")).value));
}

QStringList ClosingLines::Failures(const RunRecorder& recorder)
{
    QStringList lines;
    const QStringList files = recorder.FailedRoundFiles();
    if (!files.isEmpty())
        lines << QStringLiteral("mbrun: %1 of %2 rounds failed: %3\n")
                     .arg(files.size())
                     .arg(recorder.RoundCount())
                     .arg(files.join(QStringLiteral(", ")));
    const QStringList& outside = recorder.FailedOutsideRounds();
    if (!outside.isEmpty())
        lines << QStringLiteral("mbrun: failed outside any round: %1\n").arg(outside.join(QStringLiteral(", ")));
    return lines;
}

QStringList ClosingLines::Interrupted(const RunRecorder& recorder, const QString& signalName)
{
    const QStringList running = recorder.InterruptedRoundFiles();
    QString line = QStringLiteral("mbrun: %1 stopped the run; steps finished: %2")
                       .arg(signalName)
                       .arg(recorder.Count(Status::Succeeded) + recorder.Count(Status::Failed) + recorder.Count(Status::Skipped));
    if (!running.isEmpty())
        line += QStringLiteral("; unfinished rounds: %1").arg(running.join(QStringLiteral(", ")));
    return {line + QLatin1Char('\n')};
}

} // namespace Mbrun
