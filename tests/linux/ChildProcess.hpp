#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace hg::test {

// A child process for the Linux tests, with pipes to its standard input and
// from its standard output. It is killed (SIGKILL) and reaped when the
// object goes, and killed by the kernel if the test process dies first.
class ChildProcess {
public:
    struct Spec {
        std::vector<std::string> argv{};         // argv[0] is looked up in PATH
        std::vector<std::string> environment{};  // "NAME=value" added to ours
        std::optional<std::string> stderrPath{}; // else stderr is inherited
        bool pipeStdin = false;
        bool pipeStdout = false;
        int extraOutputFd = -1; // the child's end of a pipe to keep open as fd 3
    };

    explicit ChildProcess(const Spec& spec);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] bool started() const { return pid_ > 0; }
    [[nodiscard]] pid_t pid() const { return pid_; }

    // Writes `line` and a line feed to its standard input; false when closed.
    bool send(const std::string& line);
    // The next line of its standard output, waiting at most `limit`; none at
    // the end of output or when the time is up.
    std::optional<std::string> readLine(std::chrono::milliseconds limit);
    // Reads lines until one starts with `prefix`; returns that line.
    std::optional<std::string> waitForLine(const std::string& prefix,
                                           std::chrono::milliseconds limit);
    // Every line read from its standard output so far, in order.
    [[nodiscard]] const std::vector<std::string>& linesRead() const { return linesRead_; }

    void signal(int number) const;
    // Kills it and waits until it is reaped.
    void kill();
    // Closes its input and waits up to `limit` for it to end by itself, then kills it.
    void finish(std::chrono::milliseconds limit);
    // Whether it has exited (reaps it when it has).
    bool hasExited();

private:
    pid_t pid_ = -1;
    int stdinFd_ = -1;
    int stdoutFd_ = -1;
    std::string buffered_;
    std::vector<std::string> linesRead_;
    bool reaped_ = false;
};

// Reads one line from `fd`, waiting at most `limit`.
std::optional<std::string> readLineFrom(int fd, std::string& buffer,
                                        std::chrono::milliseconds limit);

// The full path of `program` found in PATH, or none.
std::optional<std::string> findProgram(const std::string& program);

} // namespace hg::test
