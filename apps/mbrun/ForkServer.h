#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace Mbrun {

// Starts the child runs of a run side by side as copies of a process forked at
// mbrun's start, before Qt or any library made a thread. Starting a program
// linked with GDAL costs about 40 ms of loading and linking its hundred-odd
// libraries, as much as a short round; a copy of a process that already has them
// starts in about one. Each copy then goes on as if it had been started with the
// arguments given, its output and errors in pipes of its own.
class ForkServer
{
public:
    // First thing in main(), while the process has one thread: forks the server
    // when the command line asks for several jobs. Returns in this process as it
    // was, and also in each child the server starts later, with argc and argv
    // replaced by the child's.
    static void Start(int& argc, char**& argv);
    // False when no server runs: one job was asked for, or it could not be forked.
    static bool Available();

    struct Ended
    {
        int code = -1; // the exit code; -1 when it did not exit normally
        QByteArray out, err;
        QString failure; // why it did not start or did not end normally
    };
    // Starts a child with these arguments (without the program's name); onEnded
    // is called on this thread's event loop once it has ended and its output is
    // all read, or once it could not start (code -1, failure says why). onOutput,
    // when given, is called with the output read so far each time more arrives.
    static void Run(const QStringList& args, std::function<void(const Ended&)> onEnded,
                    std::function<void(const Ended&)> onOutput = {});
    // Sends the signal to every child still running.
    static void SignalAll(int signal);
};

} // namespace Mbrun
