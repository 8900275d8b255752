// mbrun: runs a model file the way the editor's Run does, without a window.
#include "BatchRun.h"
#include "CommandLine.h"
#include "Console.h"

#include "HostRunner/AlgorithmList.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <unistd.h>

using namespace Mbrun;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Paths travel as local 8-bit text to the algorithms: make that UTF-8.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    const QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        Console::Out(CommandLine::Usage());
        return BatchRun::Refused;
    }
    CommandLine options;
    if (!options.Parse(args)) {
        Console::Err(options.Error());
        return BatchRun::Refused;
    }
    switch (options.GetAction()) {
    case CommandLine::Action::Help:
        Console::Out(CommandLine::Usage());
        return BatchRun::Success;
    case CommandLine::Action::Algorithms:
        Console::Out(HostRunner::AlgorithmListMarkdown());
        return BatchRun::Success;
    case CommandLine::Action::List:
    case CommandLine::Action::Run:
        break;
    }
    BatchRun batch(options);
    const int code = batch.Exec();
    if (batch.MustQuitAtOnce()) {
        // A stopped step cannot be interrupted and may still be writing on the
        // pool; waiting for it (as the pool's teardown would) defeats the signal.
        // Its output stays unpublished: the host moves a file into place only when
        // it is complete.
        Console::Flush();
        _exit(code);
    }
    return code;
}
