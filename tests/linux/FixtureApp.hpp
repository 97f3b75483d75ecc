#pragma once

#include "ChildProcess.hpp"

#include <memory>
#include <string>

namespace hg {
class AtspiAccessibility;
}

namespace hg::test {

// The fixture meeting application (hg-fixture-app) running on the private
// desktop with its accessibility tree exported. It runs under a process name
// of its own (a link to the program), so that the running applications of one
// test never include another test's fixture.
class FixtureApp {
public:
    // Starts it and waits until its menu bar can be read through `ax`. Null,
    // with the reason, when it does not come up.
    static std::unique_ptr<FixtureApp> start(AtspiAccessibility& ax, std::string& whyNot);

    [[nodiscard]] pid_t pid() const { return process_->pid(); }
    // Its process name, as /proc/PID/comm shows it.
    [[nodiscard]] const std::string& processName() const { return processName_; }

    // Sends a command and returns the state afterwards ("muted", ...).
    std::string command(const std::string& text);
    // The state now.
    std::string state() { return command("state"); }

    // Kills it and waits until the registry has forgotten it, so that later
    // calls see it gone rather than racing its disconnection.
    void kill(AtspiAccessibility& ax);
    void signal(int number) { process_->signal(number); }

private:
    FixtureApp(std::unique_ptr<ChildProcess> process, std::string processName)
        : process_(std::move(process)), processName_(std::move(processName)) {}

    std::unique_ptr<ChildProcess> process_;
    std::string processName_;
};

} // namespace hg::test
