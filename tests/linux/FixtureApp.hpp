#pragma once

#include "ChildProcess.hpp"

#include <memory>
#include <string>

namespace hg {
class AtspiAccessibility;
}

namespace hg::test {

// The fixture meeting application (hg-fixture-app) running on the private
// desktop with its accessibility tree exported.
class FixtureApp {
public:
    // Starts it and waits until its menu bar can be read through `ax`. Null,
    // with the reason, when it does not come up.
    static std::unique_ptr<FixtureApp> start(AtspiAccessibility& ax, std::string& whyNot);

    [[nodiscard]] pid_t pid() const { return process_->pid(); }

    // Sends a command and returns the state afterwards ("muted", ...).
    std::string command(const std::string& text);
    // The state now.
    std::string state() { return command("state"); }

    // Kills it and waits until the registry has forgotten it, so that later
    // calls see it gone rather than racing its disconnection.
    void kill(AtspiAccessibility& ax);
    void signal(int number) { process_->signal(number); }

private:
    explicit FixtureApp(std::unique_ptr<ChildProcess> process) : process_(std::move(process)) {}

    std::unique_ptr<ChildProcess> process_;
};

} // namespace hg::test
