#include "ForkServer.h"

#include "HostRunner/GdalSupport.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Mbrun {

namespace {

// What the run asks of the server; a start is followed by the child's
// arguments, each ended by a NUL, and carries its output and error pipes.
struct Request
{
    enum Kind : int32_t { Start, Signal } kind;
    int32_t id;
    int32_t signal;
};
// What the server answers when a child has ended or could not start.
struct Reply
{
    int32_t id;
    int32_t status; // waitpid's, or errno when it did not start
    int32_t started;
};
constexpr size_t kMaxRequest = 60 * 1024;

#if defined(MB_COVERAGE)
extern "C" void __gcov_dump();
#endif

// The server ends with its run, without the libraries' teardown.
[[noreturn]] void quit(int code)
{
#if defined(MB_COVERAGE)
    __gcov_dump();
#endif
    _exit(code);
}

int g_socket = -1; // the run's end

bool asksForJobs(int argc, char** argv)
{
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "--jobs") == 0 || std::strcmp(argv[i], "-j") == 0)
            return std::strcmp(argv[i + 1], "1") != 0;
    return false;
}

sigset_t serverSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (int s : {SIGCHLD, SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, s);
    return set;
}

void reply(int socket, const Reply& r)
{
    if (::send(socket, &r, sizeof r, MSG_NOSIGNAL) != sizeof r)
        quit(0); // the run is gone
}

// The copies of the argument strings live as long as the child does.
void setArguments(const char* first, const char* data, size_t size, int& argc, char**& argv)
{
    static std::vector<std::string> strings;
    static std::vector<char*> pointers;
    strings.assign(1, first);
    pointers.clear();
    for (size_t at = 0; at < size;) {
        const size_t length = ::strnlen(data + at, size - at);
        strings.emplace_back(data + at, length);
        at += length + 1;
    }
    for (std::string& s : strings)
        pointers.push_back(s.data());
    pointers.push_back(nullptr);
    argc = int(strings.size());
    argv = pointers.data();
}

// The server's loop; returns only in a child it forked, set up as that child.
void serve(int socket, const sigset_t& childMask, int& argc, char**& argv)
{
    const int null = ::open("/dev/null", O_RDWR);
    for (int fd = 0; fd < 3 && null >= 0; ++fd)
        ::dup2(null, fd);
    if (null > 2)
        ::close(null);
    // Every child then begins with the drivers in place.
    HostRunner::EnsureGdalRegistered();

    sigset_t chld;
    sigemptyset(&chld);
    sigaddset(&chld, SIGCHLD);
    const int reaped = ::signalfd(-1, &chld, SFD_CLOEXEC | SFD_NONBLOCK);
    if (reaped < 0)
        quit(1); // the run finds the server gone and says so
    std::map<pid_t, int32_t> children;
    std::vector<char> buffer(kMaxRequest);
    for (;;) {
        pollfd fds[2] = {{socket, POLLIN, 0}, {reaped, POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            quit(1);
        }
        if (fds[1].revents) {
            signalfd_siginfo info;
            while (::read(reaped, &info, sizeof info) == sizeof info) {
            }
            int status = 0;
            pid_t pid;
            while ((pid = ::waitpid(-1, &status, WNOHANG)) > 0) {
                const auto it = children.find(pid);
                if (it == children.end())
                    continue;
                reply(socket, {it->second, status, 1});
                children.erase(it);
            }
        }
        if (!fds[0].revents)
            continue;

        int pipes[2] = {-1, -1};
        iovec io{buffer.data(), buffer.size()};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof pipes)];
        msghdr message{};
        message.msg_iov = &io;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t size = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            quit(0); // the run has ended
        const cmsghdr* header = CMSG_FIRSTHDR(&message);
        if (header && header->cmsg_type == SCM_RIGHTS && header->cmsg_len == CMSG_LEN(sizeof pipes))
            std::memcpy(pipes, CMSG_DATA(header), sizeof pipes);
        if (size_t(size) < sizeof(Request))
            continue;
        Request request;
        std::memcpy(&request, buffer.data(), sizeof request);
        if (request.kind == Request::Signal) {
            for (const auto& child : children)
                ::kill(child.first, request.signal);
            continue;
        }
        if (pipes[0] < 0) {
            reply(socket, {request.id, EBADF, 0});
            continue;
        }
        const pid_t server = ::getpid();
        const pid_t pid = ::fork();
        if (pid == 0) {
            // Without its server the child's run has no one to hear of it: it stops
            // as at a SIGTERM (held until its run takes the stop signals).
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
            if (::getppid() != server)
                ::raise(SIGTERM);
            // Once the run is gone no one reads the child's output: a write to it
            // then fails instead of ending the child before it has cleaned up.
            ::signal(SIGPIPE, SIG_IGN);
            ::close(socket);
            ::close(reaped);
            ::dup2(pipes[0], 1);
            ::dup2(pipes[1], 2);
            ::close(pipes[0]);
            ::close(pipes[1]);
            pthread_sigmask(SIG_SETMASK, &childMask, nullptr);
            setArguments(argv[0], buffer.data() + sizeof request, size_t(size) - sizeof request, argc, argv);
            return;
        }
        ::close(pipes[0]);
        ::close(pipes[1]);
        if (pid < 0)
            reply(socket, {request.id, errno, 0});
        else
            children.emplace(pid, request.id);
    }
}

// The run's side: each child's output is read as it comes, so that a child never
// waits on a full pipe, and handed over whole once the server says it ended.
struct Pending
{
    int out = -1, err = -1;
    std::unique_ptr<QSocketNotifier> outReady, errReady;
    ForkServer::Ended ended;
    std::function<void(const ForkServer::Ended&)> onEnded, onOutput;
};

std::map<int32_t, std::unique_ptr<Pending>>& pending()
{
    static auto* map = new std::map<int32_t, std::unique_ptr<Pending>>;
    return *map;
}

// True at the end of the pipe: the child closed it.
bool readAvailable(int fd, QByteArray& into)
{
    char chunk[16384];
    for (;;) {
        const ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n > 0)
            into.append(chunk, int(n));
        else if (n < 0 && errno == EINTR)
            continue;
        else
            return n == 0;
    }
}

void finish(int32_t id, const Reply* r, const QString& failure)
{
    const auto it = pending().find(id);
    if (it == pending().end())
        return;
    std::unique_ptr<Pending> p = std::move(it->second);
    pending().erase(it);
    p->outReady.reset();
    p->errReady.reset();
    // The child has ended: all it wrote is in the pipes.
    for (auto [fd, into] : {std::make_pair(p->out, &p->ended.out), std::make_pair(p->err, &p->ended.err)}) {
        if (fd < 0)
            continue;
        readAvailable(fd, *into);
        ::close(fd);
    }
    p->ended.failure = failure;
    if (r && !r->started)
        p->ended.failure = QStringLiteral("it could not start: %1").arg(QString::fromLocal8Bit(std::strerror(r->status)));
    else if (r && WIFEXITED(r->status))
        p->ended.code = WEXITSTATUS(r->status);
    else if (r && WIFSIGNALED(r->status))
        p->ended.failure = QStringLiteral("it was ended by signal %1").arg(WTERMSIG(r->status));
    p->onEnded(p->ended);
}

void onReplies()
{
    static QSocketNotifier* notifier = nullptr;
    if (!notifier) {
        notifier = new QSocketNotifier(g_socket, QSocketNotifier::Read, QCoreApplication::instance());
        QObject::connect(notifier, &QSocketNotifier::activated, [] {
            Reply r;
            ssize_t n;
            while ((n = ::recv(g_socket, &r, sizeof r, MSG_DONTWAIT)) == sizeof r)
                finish(r.id, &r, QString());
            if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
                // The server is gone: no child of it will be heard of again.
                notifier->setEnabled(false);
                ::close(g_socket);
                g_socket = -1;
                std::vector<int32_t> ids;
                for (const auto& p : pending())
                    ids.push_back(p.first);
                for (int32_t id : ids)
                    finish(id, nullptr, QStringLiteral("the process that starts the rounds ended"));
            }
        });
    }
}

bool send(const Request& request, const QByteArray& arguments, const int* pipes)
{
    QByteArray data(reinterpret_cast<const char*>(&request), sizeof request);
    data += arguments;
    if (g_socket < 0 || size_t(data.size()) > kMaxRequest)
        return false;
    iovec io{data.data(), size_t(data.size())};
    msghdr message{};
    message.msg_iov = &io;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(2 * sizeof(int))] = {};
    if (pipes) {
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(2 * sizeof(int));
        std::memcpy(CMSG_DATA(header), pipes, 2 * sizeof(int));
    }
    return ::sendmsg(g_socket, &message, MSG_NOSIGNAL) == ssize_t(data.size());
}

} // namespace

void ForkServer::Start(int& argc, char**& argv)
{
    if (!asksForJobs(argc, argv))
        return;
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return;
    // The server takes no stop signal (the run passes them on to the children)
    // and hears of its children through SIGCHLD; a child begins with the stop
    // signals held until its own handling takes them.
    const sigset_t held = serverSignals();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &held, &before);
    sigset_t childMask = before;
    for (int s : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&childMask, s);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(ends[0]);
        serve(ends[1], childMask, argc, argv);
        return;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::close(ends[1]);
    if (pid < 0)
        ::close(ends[0]);
    else
        g_socket = ends[0];
}

bool ForkServer::Available()
{
    return g_socket >= 0;
}

void ForkServer::Run(const QStringList& args, std::function<void(const Ended&)> onEnded,
                     std::function<void(const Ended&)> onOutput)
{
    static int32_t nextId = 0;
    const int32_t id = ++nextId;
    auto p = std::make_unique<Pending>();
    p->onEnded = std::move(onEnded);
    p->onOutput = std::move(onOutput);
    QByteArray arguments;
    for (const QString& a : args)
        arguments += a.toLocal8Bit() + '\0';
    int out[2] = {-1, -1}, err[2] = {-1, -1};
    const bool piped = ::pipe2(out, O_CLOEXEC) == 0 && ::pipe2(err, O_CLOEXEC) == 0;
    const QString why = piped ? QStringLiteral("the process that starts the rounds is gone")
                              : QString::fromLocal8Bit(std::strerror(errno));
    const int ends[2] = {out[1], err[1]};
    const bool sent = piped && send({Request::Start, id, 0}, arguments, ends);
    // The child has its own copies of the write ends now.
    for (int fd : ends)
        if (fd >= 0)
            ::close(fd);
    p->out = out[0];
    p->err = err[0];
    if (sent) {
        // The notifiers belong to the pending run, which outlives them.
        Pending* pending = p.get();
        auto watch = [pending](int fd, QByteArray& into) {
            ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
            auto notifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
            QSocketNotifier* n = notifier.get();
            QObject::connect(n, &QSocketNotifier::activated, [fd, &into, n, pending] {
                if (readAvailable(fd, into))
                    n->setEnabled(false);
                if (pending->onOutput)
                    pending->onOutput(pending->ended);
            });
            return notifier;
        };
        p->outReady = watch(p->out, p->ended.out);
        p->errReady = watch(p->err, p->ended.err);
    }
    pending().emplace(id, std::move(p));
    if (sent)
        onReplies();
    else // told from the event loop, as an end is
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [id, why] { finish(id, nullptr, QStringLiteral("it could not start: %1").arg(why)); },
            Qt::QueuedConnection);
}

void ForkServer::SignalAll(int signal)
{
    send({Request::Signal, 0, signal}, QByteArray(), nullptr);
}

} // namespace Mbrun
