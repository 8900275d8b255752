// mbrun: runs a model file the way the editor's Run does, without a window.
#include "BatchRun.h"
#include "CommandLine.h"
#include "Console.h"
#include "ForkServer.h"

#include "HostRunner/AlgorithmList.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif
#if defined(MB_COVERAGE)
extern "C" void __gcov_dump();
#endif

using namespace Mbrun;

namespace {

// Ends the process once a run has written and closed all it writes, skipping the
// libraries' teardown (GDAL's drivers and caches among them): a twentieth of a
// short run. After a signal it matters more: a stopped step cannot be interrupted
// and may still be writing on the pool, and waiting for it, as the pool's teardown
// would, defeats the signal. Its output stays unpublished: the host moves a file
// into place only when it is complete.
[[noreturn]] void QuitNow(int code)
{
    Console::Flush();
#if defined(__SANITIZE_ADDRESS__)
    // The leak check would run at a normal exit.
    __lsan_do_leak_check();
#endif
#if defined(MB_COVERAGE)
    __gcov_dump(); // the counters are written at a normal exit
#endif
    _exit(code);
}

} // namespace

int main(int argc, char** argv)
{
    // Returns also in each child the server starts, with that child's arguments.
    ForkServer::Start(argc, argv);
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
    case CommandLine::Action::ListRounds:
    case CommandLine::Action::Export:
    case CommandLine::Action::Run:
        break;
    }
    BatchRun batch(options);
    QuitNow(batch.Exec());
}
