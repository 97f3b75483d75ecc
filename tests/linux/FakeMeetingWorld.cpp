#include "MeetingWorld.hpp"
#include "platform/fake/FakeAccessibility.hpp"
#include "platform/fake/FakeRunningApplications.hpp"

namespace hg::test {

namespace {

// What the fixture application does, on the fake tree. Roles and nesting are
// those the AT-SPI backend reports for the fixture.
class FakeMeetingWorld final : public MeetingWorld {
public:
    FakeMeetingWorld() {
        application_->menuBar = menuBar_;
        auto frame = application_->add("AXFrame", "Meeting fixture");
        frame->add("AXLabel", "Meeting fixture");
        frame->add(menuBar_);
        auto file = menuBar_->add("AXMenuItem", "File");
        file->add("AXMenu", "")->add("AXMenuItem", "Quit");

        meetingItem_ = FakeAXElement::make("AXMenuItem", "Meeting");
        auto popup = meetingItem_->add("AXMenu", "");
        popup->add(muteItem_);
        popup->add("AXSeparator", "");
        popup->add("AXMenuItem", "Leave Meeting");
        muteItem_->onPress = [this] {
            if (!enabled_) {
                return ax::cannotComplete; // what the backend answers for a disabled item
            }
            muted_ = !muted_;
            updateTitles();
            return ax::success;
        };
        secondItem_->onPress = [] { return ax::success; };

        ax_.setTrusted(true);
        ax_.setApplication(pid, application_);
        apps_.add("us.zoom.xos", pid);
    }

    Accessibility& accessibility() override { return ax_; }
    RunningApplications& runningApplications() override { return apps_; }
    [[nodiscard]] ProcessId appPid() const override { return pid; }

    std::string command(const std::string& text) override {
        if (text == "join" || text == "join muted") {
            if (!inMeeting_) {
                menuBar_->children.push_back(meetingItem_);
            }
            inMeeting_ = true;
            muted_ = text == "join muted";
        } else if (text == "leave") {
            std::erase(menuBar_->children, meetingItem_);
            inMeeting_ = false;
            muted_ = false;
            enabled_ = true;
            setBoth(false);
        } else if (text == "mute" || text == "unmute") {
            muted_ = text == "mute";
        } else if (text == "disable" || text == "enable") {
            enabled_ = text == "enable";
        } else if (text == "both") {
            setBoth(true);
        }
        updateTitles();
        return state();
    }

    std::string awaitState() override { return state(); }

    void kill() override {
        application_->markStale();
        ax_.removeApplication(pid);
        apps_.removePid(pid);
    }
    void freeze() override {
        for (const AXOp op :
             {AXOp::menubar, AXOp::children, AXOp::role, AXOp::title, AXOp::press}) {
            ax_.fail(op, ax::cannotComplete);
        }
    }
    void thaw() override { ax_.heal(); }

private:
    static constexpr ProcessId pid = 4100;

    void updateTitles() {
        muteItem_->title = muted_ ? "Unmute Audio" : "Mute Audio";
        secondItem_->title = muted_ ? "Mute Audio" : "Unmute Audio";
    }

    void setBoth(bool both) {
        auto& items = meetingItem_->children.front()->children;
        std::erase(items, secondItem_);
        if (both) {
            items.insert(items.begin() + 1, secondItem_);
        }
        both_ = both;
    }

    [[nodiscard]] std::string state() const {
        std::string text = !inMeeting_ ? "noMeeting" : muted_ ? "muted" : "unmuted";
        if (!enabled_) {
            text += " disabled";
        }
        if (both_) {
            text += " both";
        }
        return text;
    }

    FakeAccessibility ax_;
    FakeRunningApplications apps_;
    std::shared_ptr<FakeAXElement> application_ =
        FakeAXElement::make("AXApplication", "hg-fixture-app");
    std::shared_ptr<FakeAXElement> menuBar_ = FakeAXElement::make("AXMenuBar", "");
    std::shared_ptr<FakeAXElement> meetingItem_;
    std::shared_ptr<FakeAXElement> muteItem_ = FakeAXElement::make("AXMenuItem", "Mute Audio");
    std::shared_ptr<FakeAXElement> secondItem_ = FakeAXElement::make("AXMenuItem", "Unmute Audio");
    bool inMeeting_ = false;
    bool muted_ = false;
    bool enabled_ = true;
    bool both_ = false;
};

} // namespace

std::unique_ptr<MeetingWorld> makeFakeWorld() {
    return std::make_unique<FakeMeetingWorld>();
}

} // namespace hg::test
