#include "backends/posix/PosixProcessRunner.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

extern char** environ; // NOLINT(readability-redundant-declaration)

namespace hg {

namespace {

using SteadyClock = std::chrono::steady_clock;

// Closes its descriptor on every path out of run().
class Fd {
public:
    Fd() = default;
    explicit Fd(int fd) : fd_(fd) {}
    Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() { reset(); }

    [[nodiscard]] int get() const { return fd_; }
    [[nodiscard]] bool valid() const { return fd_ >= 0; }
    void reset() {
        if (fd_ >= 0) {
            ::close(fd_);
            fd_ = -1;
        }
    }

private:
    int fd_ = -1;
};

// A close-on-exec descriptor numbered above 2, so that dup2 onto the child's
// standard streams never finds it already sitting there.
Fd highCloexec(int fd) {
    if (fd < 0) {
        return Fd();
    }
    if (fd > 2) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        return Fd(fd);
    }
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 3);
    ::close(fd);
    return Fd(moved);
}

struct Pipe {
    Fd read;
    Fd write;
};

// pipe2 is not on every POSIX system; run() is called from one thread, so
// setting close-on-exec afterwards cannot race with another spawn.
bool makePipe(Pipe& pipe) {
    std::array<int, 2> fds{-1, -1};
    if (::pipe(fds.data()) != 0) {
        return false;
    }
    pipe.read = highCloexec(fds[0]);
    pipe.write = highCloexec(fds[1]);
    if (!pipe.read.valid() || !pipe.write.valid()) {
        return false;
    }
    ::fcntl(pipe.read.get(), F_SETFL, ::fcntl(pipe.read.get(), F_GETFL) | O_NONBLOCK);
    return true;
}

std::string errorText(int code) {
    return std::strerror(code);
}

int exitStatusOf(int waitStatus) {
    if (WIFEXITED(waitStatus)) {
        return WEXITSTATUS(waitStatus);
    }
    if (WIFSIGNALED(waitStatus)) {
        return WTERMSIG(waitStatus);
    }
    return waitStatus;
}

// Owns the spawn attributes and file actions until run() returns.
struct SpawnSetup {
    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
    SpawnSetup() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
};

// Reads what is there; false once the stream has ended or failed.
bool drain(int fd, std::string& into, std::size_t& dropped) {
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t n = ::read(fd, buffer.data(), buffer.size());
        if (n > 0) {
            const auto room = PosixProcessRunner::maxCapturedBytes -
                              std::min(into.size(), PosixProcessRunner::maxCapturedBytes);
            const auto kept = std::min(static_cast<std::size_t>(n), room);
            into.append(buffer.data(), kept);
            dropped += static_cast<std::size_t>(n) - kept;
            continue;
        }
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            return true;
        }
        return false;
    }
}

} // namespace

ProcessResult PosixProcessRunner::run(const std::string& executable,
                                      const std::vector<std::string>& arguments,
                                      std::chrono::milliseconds timeout) {
    ProcessResult result;
    Pipe out;
    Pipe err;
    if (!makePipe(out) || !makePipe(err)) {
        result.launchError = errorText(errno);
        return result;
    }
    const Fd devNull = highCloexec(::open("/dev/null", O_RDONLY));

    SpawnSetup setup;
    if (devNull.valid()) {
        posix_spawn_file_actions_adddup2(&setup.actions, devNull.get(), STDIN_FILENO);
    }
    posix_spawn_file_actions_adddup2(&setup.actions, out.write.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&setup.actions, err.write.get(), STDERR_FILENO);

    // Its own process group, so that a time-out also ends what it started; a
    // clean signal mask and the default SIGPIPE whatever this process has set.
    sigset_t noSignals;
    sigemptyset(&noSignals);
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    posix_spawnattr_setpgroup(&setup.attributes, 0);
    posix_spawnattr_setsigmask(&setup.attributes, &noSignals);
    posix_spawnattr_setsigdefault(&setup.attributes, &pipeSignal);
    posix_spawnattr_setflags(&setup.attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                    POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> argStore;
    argStore.reserve(arguments.size() + 1);
    argStore.push_back(executable);
    argStore.insert(argStore.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(argStore.size() + 1);
    for (auto& a : argStore) {
        argv.push_back(a.data());
    }
    argv.push_back(nullptr);

    pid_t pid = -1;
    // posix_spawn reports a failed exec through its return value (glibc 2.24
    // and later, macOS), so a missing or unexecutable tool is seen here.
    const int spawnError = ::posix_spawn(&pid, executable.c_str(), &setup.actions,
                                         &setup.attributes, argv.data(), environ);
    out.write.reset();
    err.write.reset();
    if (spawnError != 0) {
        result.launchError = errorText(spawnError);
        return result;
    }

    const auto deadline = SteadyClock::now() + std::min(timeout, longestTimeout_);
    const auto remainingMs = [deadline]() -> int {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
        return static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, left.count()));
    };

    const auto drainInto = [&](Pipe& pipe) {
        return &pipe == &out
                   ? drain(pipe.read.get(), result.standardOutput, result.droppedOutputBytes)
                   : drain(pipe.read.get(), result.standardError, result.droppedErrorBytes);
    };

    // The pipes are read until the child exits, not until they close: a
    // process the child started may hold them open long after the answer
    // came. Polls are therefore short while the child runs.
    constexpr int exitCheckMs = 20;
    int waitStatus = 0;
    bool reaped = false;
    bool timedOut = false;
    while (out.read.valid() || err.read.valid()) {
        const int waitMs = std::min(remainingMs(), exitCheckMs);
        if (waitMs <= 0) {
            timedOut = true;
            break;
        }
        std::array<pollfd, 2> fds{};
        std::array<Pipe*, 2> owners{};
        nfds_t count = 0;
        for (Pipe* p : {&out, &err}) {
            if (p->read.valid()) {
                fds[count] = pollfd{p->read.get(), POLLIN, 0};
                owners[count] = p;
                ++count;
            }
        }
        const int ready = ::poll(fds.data(), count, waitMs);
        if (ready < 0 && errno != EINTR) {
            timedOut = true; // cannot watch the pipes: end the child rather than block
            break;
        }
        for (nfds_t i = 0; i < count && ready > 0; ++i) {
            if (fds[i].revents == 0) {
                continue;
            }
            if (!drainInto(*owners[i])) {
                owners[i]->read.reset();
            }
        }
        if (ready == 0 && ::waitpid(pid, &waitStatus, WNOHANG) == pid) {
            // Exited with a pipe still open elsewhere: take what is there.
            reaped = true;
            for (Pipe* p : {&out, &err}) {
                if (p->read.valid()) {
                    drainInto(*p);
                }
            }
            break;
        }
    }

    // Both pipes closed: the child is exiting or has exited, usually a few
    // microseconds from being reaped. A blocking waitpid would ignore the
    // time-out (a child may close its streams and go on running), and a
    // sleeping poll wakes late on a busy machine, which added a third to the
    // cost of a short run. So yield to the child for a moment first, then poll
    // with a growing pause.
    auto pause = std::chrono::microseconds(50);
    const auto yieldUntil = SteadyClock::now() + std::chrono::milliseconds(2);
    while (!timedOut && !reaped) {
        const pid_t done = ::waitpid(pid, &waitStatus, WNOHANG);
        if (done == pid) {
            reaped = true;
            break;
        }
        if (done < 0 && errno != EINTR) {
            break;
        }
        const auto now = SteadyClock::now();
        if (now >= deadline) {
            timedOut = true;
            break;
        }
        if (now < yieldUntil) {
            sched_yield();
            continue;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::microseconds(10000));
    }

    if (timedOut) {
        ::kill(-pid, SIGKILL);
        ::kill(pid, SIGKILL);
        result.timedOut = true;
    }
    out.read.reset();
    err.read.reset();
    while (!reaped) {
        const pid_t done = ::waitpid(pid, &waitStatus, 0);
        if (done == pid || (done < 0 && errno != EINTR)) {
            reaped = done == pid;
            break;
        }
    }
    // Not reaped: someone else collected the child (SIGCHLD ignored); its
    // status is unknown.
    result.exitStatus = reaped ? exitStatusOf(waitStatus) : -1;
    result.endedBySignal = reaped && WIFSIGNALED(waitStatus);
    return result;
}

} // namespace hg
