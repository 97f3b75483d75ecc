#include "ChildProcess.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace hg::test {

using Clock = std::chrono::steady_clock;

std::optional<std::string> findProgram(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return ::access(program.c_str(), X_OK) == 0 ? std::optional(program) : std::nullopt;
    }
    const char* path = std::getenv("PATH");
    std::string dirs = path != nullptr ? path : "/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        const auto end = dirs.find(':', start);
        const std::string dir = dirs.substr(start, end == std::string::npos ? end : end - start);
        const std::string candidate = dir + "/" + program;
        if (!dir.empty() && ::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
    return std::nullopt;
}

std::optional<std::string> readLineFrom(int fd, std::string& buffer,
                                        std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (true) {
        if (const auto end = buffer.find('\n'); end != std::string::npos) {
            std::string line = buffer.substr(0, end);
            buffer.erase(0, end + 1);
            return line;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || fd < 0) {
            return std::nullopt;
        }
        pollfd p{fd, POLLIN, 0};
        const int ready = ::poll(&p, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return std::nullopt;
        }
        char chunk[512];
        const ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n <= 0) {
            return std::nullopt;
        }
        buffer.append(chunk, static_cast<std::size_t>(n));
    }
}

ChildProcess::ChildProcess(const Spec& spec) {
    const auto program = findProgram(spec.argv.at(0));
    if (!program) {
        return;
    }
    // Everything the child needs is prepared before fork: between fork and
    // exec only async-signal-safe calls are allowed.
    std::vector<std::string> env;
    for (char** e = environ; *e != nullptr; ++e) {
        env.emplace_back(*e);
    }
    for (const auto& extra : spec.environment) {
        const auto name = extra.substr(0, extra.find('=') + 1);
        std::erase_if(env, [&](const std::string& e) { return e.rfind(name, 0) == 0; });
        env.push_back(extra);
    }
    std::vector<char*> envp;
    for (auto& e : env) {
        envp.push_back(e.data());
    }
    envp.push_back(nullptr);
    std::vector<std::string> args = spec.argv;
    std::vector<char*> argv;
    for (auto& a : args) {
        argv.push_back(a.data());
    }
    argv.push_back(nullptr);

    int in[2] = {-1, -1};
    int out[2] = {-1, -1};
    if ((spec.pipeStdin && ::pipe2(in, O_CLOEXEC) != 0) ||
        (spec.pipeStdout && ::pipe2(out, O_CLOEXEC) != 0)) {
        return;
    }
    int errFd = -1;
    if (spec.stderrPath) {
        errFd = ::open(spec.stderrPath->c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(127);
        }
        if (spec.pipeStdin) {
            ::dup2(in[0], STDIN_FILENO);
        }
        if (spec.pipeStdout) {
            ::dup2(out[1], STDOUT_FILENO);
        }
        if (errFd >= 0) {
            ::dup2(errFd, STDERR_FILENO);
        }
        if (spec.extraOutputFd >= 0) {
            ::dup2(spec.extraOutputFd, 3);
        }
        ::execve(program->c_str(), argv.data(), envp.data());
        ::_exit(127);
    }
    if (errFd >= 0) {
        ::close(errFd);
    }
    if (spec.pipeStdin) {
        ::close(in[0]);
        stdinFd_ = in[1];
    }
    if (spec.pipeStdout) {
        ::close(out[1]);
        stdoutFd_ = out[0];
    }
    pid_ = pid;
}

ChildProcess::~ChildProcess() {
    kill();
    if (stdinFd_ >= 0) {
        ::close(stdinFd_);
    }
    if (stdoutFd_ >= 0) {
        ::close(stdoutFd_);
    }
}

bool ChildProcess::send(const std::string& line) {
    if (stdinFd_ < 0) {
        return false;
    }
    // A child that has gone must not take the test down with SIGPIPE.
    std::signal(SIGPIPE, SIG_IGN);
    const std::string text = line + "\n";
    return ::write(stdinFd_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds limit) {
    auto line = readLineFrom(stdoutFd_, buffered_, limit);
    if (line) {
        linesRead_.push_back(*line);
    }
    return line;
}

std::optional<std::string> ChildProcess::waitForLine(const std::string& prefix,
                                                     std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (true) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        auto line = readLine(std::max(left, std::chrono::milliseconds(0)));
        if (!line) {
            return std::nullopt;
        }
        if (line->rfind(prefix, 0) == 0) {
            return line;
        }
    }
}

void ChildProcess::signal(int number) const {
    if (pid_ > 0 && !reaped_) {
        ::kill(pid_, number);
    }
}

bool ChildProcess::hasExited() {
    if (pid_ <= 0 || reaped_) {
        return true;
    }
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        reaped_ = true;
    }
    return reaped_;
}

void ChildProcess::kill() {
    if (pid_ <= 0 || reaped_) {
        return;
    }
    ::kill(pid_, SIGKILL);
    int status = 0;
    while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    reaped_ = true;
}

void ChildProcess::finish(std::chrono::milliseconds limit) {
    if (stdinFd_ >= 0) {
        ::close(stdinFd_);
        stdinFd_ = -1;
    }
    const auto deadline = Clock::now() + limit;
    while (!hasExited() && Clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    kill();
}

} // namespace hg::test
