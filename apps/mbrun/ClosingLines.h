#pragma once

#include <QStringList>

namespace Plugin {
class APCFileIterator;
}

namespace Mbrun {

class RunRecorder;

// mbrun's own lines on standard error once a run has ended: what the log alone
// leaves a batch user to dig for.
class ClosingLines
{
public:
    // A warning for each file iterator of the run that handed out nothing.
    static QStringList EmptyIterators(const RunRecorder& recorder);
    // The warning for an iterator that handed out nothing: the folders it read
    // (or that it had none) and its filter.
    static QString EmptyIterator(Plugin::APCFileIterator* iterator);
    // The failed rounds named by their driving files, and failed steps outside
    // any round; empty when nothing failed.
    static QStringList Failures(const RunRecorder& recorder);
    // The rounds that were running when a signal stopped the run.
    static QStringList Interrupted(const RunRecorder& recorder, const QString& signalName);
};

} // namespace Mbrun
