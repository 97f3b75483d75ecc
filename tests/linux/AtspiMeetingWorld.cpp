#include "FixtureApp.hpp"
#include "MeetingWorld.hpp"
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/ProcRunningApplications.hpp"

#include <csignal>

namespace hg::test {

namespace {

class AtspiMeetingWorld final : public MeetingWorld {
public:
    bool start(std::string& whyNot) {
        app_ = FixtureApp::start(ax_, whyNot);
        if (!app_) {
            return false;
        }
        pid_ = app_->pid();
        apps_ = std::make_unique<ProcRunningApplications>(ProcRunningApplications::Options{
            .identities = {AppIdentity{"us.zoom.xos", {app_->processName()}, {}}},
            .registeredProcesses = [this] { return ax_.registeredProcessIds(); },
        });
        return true;
    }

    Accessibility& accessibility() override { return ax_; }
    RunningApplications& runningApplications() override { return *apps_; }
    [[nodiscard]] ProcessId appPid() const override { return pid_; }

    std::string command(const std::string& text) override { return app_->command(text); }
    std::string awaitState() override { return app_->state(); }

    void kill() override { app_->kill(ax_); }
    void freeze() override { app_->signal(SIGSTOP); }
    void thaw() override { app_->signal(SIGCONT); }

private:
    AtspiAccessibility ax_{AtspiAccessibility::Options{.alwaysOn = true}};
    std::unique_ptr<ProcRunningApplications> apps_;
    std::unique_ptr<FixtureApp> app_;
    ProcessId pid_ = 0;
};

} // namespace

std::unique_ptr<MeetingWorld> makeAtspiWorld(std::string& whyNot) {
    auto world = std::make_unique<AtspiMeetingWorld>();
    if (!world->start(whyNot)) {
        return nullptr;
    }
    return world;
}

} // namespace hg::test
