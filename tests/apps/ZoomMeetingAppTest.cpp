#include "apps/ZoomMeetingApp.hpp"

#include "ZoomTree.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;
using S = MeetingStatus;

struct Zoom : ZoomTree {
    ZoomMeetingApp app{ax, apps, out};
};

TEST(ZoomMeetingApp, DecisionTableOfTheTwoSearches) {
    struct Row {
        std::vector<std::string> items;
        MeetingStatus status;
        Lines printed;
    };
    const std::vector<Row> rows = {
        {{}, S::error, {}},
        {{"Unmute Audio"}, S::onMute, {}},
        {{"Mute Audio"}, S::offMute, {}},
        {{"Mute Audio", "Unmute Audio"}, S::offMute, {"BOTH BUTTONS!"}},
        {{"UNMUTE audio"}, S::onMute, {}},
        {{"mute AUDIO"}, S::offMute, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.items));
        Zoom z;
        z.meeting(row.items);
        EXPECT_EQ(z.app.fetchStatus(), row.status);
        EXPECT_EQ(z.out.lines(), row.printed);
        EXPECT_EQ(z.app.muteButton(), nullptr) << "fetching never fills the cache";
    }
}

TEST(ZoomMeetingApp, StatusWithoutAReadableMeetingMenu) {
    Zoom z;
    EXPECT_EQ(z.app.fetchStatus(), S::noMeeting);
    z.meeting({"Mute Audio"}, "meeting");
    EXPECT_EQ(z.app.fetchStatus(), S::noMeeting) << "the menu title must match exactly";

    z.ax.fail(AXOp::title, ax::cannotComplete);
    EXPECT_EQ(z.app.fetchStatus(), S::error);
    EXPECT_FALSE(z.app.answeredLate()) << "a failure code alone is not a time-out";
    EXPECT_EQ(z.out.take(),
              (Lines{"CANT COMplete", "Unexpected meeting AX error: HushGremlin.SwiftAXError"}));
    z.ax.heal();
    z.ax.setUnresponsive(true);
    EXPECT_EQ(z.app.fetchStatus(), S::error);
    EXPECT_TRUE(z.app.answeredLate());
    z.ax.setUnresponsive(false);
    z.out.take();

    z.ax.setTrusted(false);
    z.ax.clearCalls();
    EXPECT_EQ(z.app.fetchStatus(), S::setupError);
    EXPECT_TRUE(z.ax.calls().empty()) << "trust is tested before any read";
    z.apps.clear();
    EXPECT_EQ(z.app.fetchStatus(), S::notRunning) << "not running wins over no trust";
    EXPECT_TRUE(z.out.lines().empty());
}

TEST(ZoomMeetingApp, AMeetingMenuWithoutReadableItemsIsReportedOnce) {
    Zoom z;
    z.meeting({});
    z.meetingItem->children.front()->children.clear(); // not even "Start Video"
    const Lines once{"Zoom: no item of the Meeting menu can be read"};
    EXPECT_EQ(z.app.fetchStatus(), S::error);
    EXPECT_EQ(z.out.take(), once);
    EXPECT_EQ(z.app.fetchStatus(), S::error);
    EXPECT_TRUE(z.out.take().empty()) << "said once";

    z.meetingItem->children.front()->add("AXMenuItem", "Unmute Audio");
    EXPECT_EQ(z.app.fetchStatus(), S::onMute);
    z.meetingItem->children.front()->children.clear();
    EXPECT_EQ(z.app.fetchStatus(), S::error);
    EXPECT_EQ(z.out.take(), once) << "said again after a reading that found an item";
}

TEST(ZoomMeetingApp, ToggleLooksTheButtonUpOnceAndPressesItAgain) {
    Zoom z;
    z.meeting({"Unmute Audio"});
    z.ax.fail(AXOp::press, ax::actionUnsupported);
    EXPECT_EQ(z.app.toggleMute(S::onMute), S::offMute) << "an unsupported press counts as done";
    EXPECT_EQ(z.out.take(), (Lines{"GETTING BUTTON", "UNSUPPORTED"}));
    EXPECT_EQ(z.app.muteButton(), z.item("Unmute Audio"));

    z.ax.heal();
    z.ax.clearCalls();
    EXPECT_EQ(z.app.toggleMute(S::noMeeting), S::offMute) << "the argument is not used";
    EXPECT_TRUE(z.out.lines().empty());
    EXPECT_EQ(z.ax.calls(),
              (std::vector<FakeAccessibility::Call>{{AXOp::press, "Unmute Audio", ax::success}}))
        << "the cached item is pressed without a lookup";
}

TEST(ZoomMeetingApp, ToggleWithoutAButton) {
    struct Row {
        const char* what;
        std::function<void(Zoom&)> arrange;
        Lines printed;
    };
    const Lines none = {"GETTING BUTTON", "NO BUTTON"};
    const std::vector<Row> rows = {
        {"not running", [](Zoom& z) { z.apps.clear(); }, none},
        {"no meeting", [](Zoom&) {}, none},
        {"neither item", [](Zoom& z) { z.meeting({}); }, none},
        {"both items",
         [](Zoom& z) {
             z.meeting({"Mute Audio", "Unmute Audio"});
         },
         {"GETTING BUTTON", "BOTH BUTTONS!", "NO BUTTON"}},
        {"not trusted",
         [](Zoom& z) {
             z.meeting({"Mute Audio"});
             z.ax.setTrusted(false);
         },
         {"GETTING BUTTON", "DISABELD",
          "Unexpected meeting GETTING AX error: HushGremlin.SwiftAXError", "NO BUTTON"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Zoom z;
        row.arrange(z);
        EXPECT_EQ(z.app.toggleMute(S::onMute), S::error);
        EXPECT_EQ(z.out.lines(), row.printed);
        EXPECT_EQ(z.app.muteButton(), nullptr);
    }
}

} // namespace
} // namespace hg
