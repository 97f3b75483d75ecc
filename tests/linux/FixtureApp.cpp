#include "FixtureApp.hpp"

#include "DesktopSession.hpp"
#include "platform/linux/AtspiAccessibility.hpp"

#include <algorithm>
#include <thread>
#include <unistd.h>

namespace hg::test {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Generous: the first start also starts the accessibility bus and registry.
constexpr auto startLimit = 20s;
constexpr auto answerLimit = 10s;

bool registered(AtspiAccessibility& ax, pid_t pid) {
    const auto pids = ax.registeredProcessIds();
    return std::find(pids.begin(), pids.end(), pid) != pids.end();
}

} // namespace

std::unique_ptr<FixtureApp> FixtureApp::start(AtspiAccessibility& ax, std::string& whyNot) {
    const DesktopSession* session = DesktopSession::shared();
    if (session == nullptr) {
        whyNot = DesktopSession::skipReason();
        return nullptr;
    }
    // At most 15 bytes, the length the kernel keeps of a process name.
    static int started = 0;
    const std::string name =
        "hgfx" + std::to_string(::getpid()) + "-" + std::to_string(++started % 100);
    const std::string link = session->scratchDir() + "/" + name;
    if (::symlink(HG_FIXTURE_APP, link.c_str()) != 0) {
        whyNot = "no link to the fixture application could be made in " + session->scratchDir();
        return nullptr;
    }
    auto process = std::make_unique<ChildProcess>(ChildProcess::Spec{
        .argv = {link},
        .environment = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", "QT_QPA_PLATFORM=xcb"},
        .stderrPath = session->scratchDir() + "/fixture.log",
        .pipeStdin = true,
        .pipeStdout = true,
    });
    if (!process->started() || !process->waitForLine("ready ", startLimit)) {
        whyNot = "the fixture application did not start on the private display";
        return nullptr;
    }
    const auto deadline = Clock::now() + startLimit;
    while (true) {
        const auto pid = process->pid();
        if (registered(ax, pid) &&
            ax.copyAttributeValue(ax.createApplication(pid), "AXMenuBar").error == ax::success) {
            break;
        }
        if (Clock::now() > deadline) {
            whyNot = "the fixture application never showed its menu bar on the accessibility bus";
            return nullptr;
        }
        std::this_thread::sleep_for(50ms);
    }
    return std::unique_ptr<FixtureApp>(new FixtureApp(std::move(process), name));
}

std::string FixtureApp::command(const std::string& text) {
    if (text != "state") {
        process_->send(text);
    }
    process_->send("state");
    const auto line = process_->waitForLine("now ", answerLimit);
    return line ? line->substr(4) : "no answer";
}

void FixtureApp::kill(AtspiAccessibility& ax) {
    const pid_t pid = process_->pid();
    process_->kill();
    const auto deadline = Clock::now() + answerLimit;
    while (registered(ax, pid) && Clock::now() < deadline) {
        std::this_thread::sleep_for(20ms);
    }
}

} // namespace hg::test
