#include "apps/ZoomMeetingApp.hpp"

#include "ZoomTree.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Lines = std::vector<std::string>;

// Mute items swap titles when pressed, as Zoom's do.
void makeTogglable(const std::shared_ptr<FakeAXElement>& item) {
    std::weak_ptr<FakeAXElement> weak = item;
    item->onPress = [weak] {
        if (auto e = weak.lock()) {
            e->title = (*e->title == "Mute Audio") ? "Unmute Audio" : "Mute Audio";
        }
        return ax::success;
    };
}

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
        {{}, MeetingStatus::error, {}},
        {{"Unmute Audio"}, MeetingStatus::onMute, {}},
        {{"Mute Audio"}, MeetingStatus::offMute, {}},
        {{"Mute Audio", "Unmute Audio"}, MeetingStatus::offMute, {"BOTH BUTTONS!"}},
        {{"UNMUTE audio"}, MeetingStatus::onMute, {}},
        {{"mute AUDIO"}, MeetingStatus::offMute, {}},
    };
    for (const auto& row : rows) {
        Zoom z;
        z.meeting(row.items);
        EXPECT_EQ(z.app.fetchStatus(), row.status) << ::testing::PrintToString(row.items);
        EXPECT_EQ(z.out.lines(), row.printed);
        EXPECT_EQ(z.app.muteButton(), nullptr) << "fetching never fills the cache";
    }
}

TEST(ZoomMeetingApp, StatusOutsideAMeeting) {
    Zoom z;
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::noMeeting);

    z.meeting({"Mute Audio"}, "meeting");
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::noMeeting) << "the menu title must match exactly";

    z.ax.setTrusted(false);
    z.ax.clearCalls();
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::setupError);
    EXPECT_TRUE(z.ax.calls().empty()) << "trust is tested before any read";

    z.apps.clear();
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::notRunning) << "not running wins over no trust";
    EXPECT_TRUE(z.out.lines().empty());
}

TEST(ZoomMeetingApp, FailingReadsEndAsErrorWithBothLines) {
    Zoom z;
    z.meeting({"Mute Audio"});
    z.ax.fail(AXOp::title, ax::cannotComplete);
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::error);
    EXPECT_EQ(z.out.take(),
              (Lines{"CANT COMplete", "Unexpected meeting AX error: HushGremlin.SwiftAXError"}));

    // The first failure stops the fetch: the second search does not run.
    z.ax.heal();
    z.meetingItem->children[0]->children[0]->failures[AXOp::title] = ax::invalidUIElement;
    EXPECT_EQ(z.app.fetchStatus(), MeetingStatus::error);
    EXPECT_EQ(z.out.take(),
              (Lines{"INVALID ELEMENT", "Unexpected meeting AX error: HushGremlin.SwiftAXError"}));
}

TEST(ZoomMeetingApp, ToggleLooksTheButtonUpOnceAndPressesItAgain) {
    Zoom z;
    z.meeting({"Unmute Audio"});
    const auto button = z.item("Unmute Audio");
    makeTogglable(button);

    EXPECT_EQ(z.app.toggleMute(MeetingStatus::onMute), MeetingStatus::offMute);
    EXPECT_EQ(z.out.take(), Lines{"GETTING BUTTON"});
    EXPECT_EQ(z.app.muteButton(), button);
    EXPECT_EQ(*button->title, "Mute Audio");

    z.ax.clearCalls();
    EXPECT_EQ(z.app.toggleMute(MeetingStatus::noMeeting), MeetingStatus::offMute)
        << "argument unused";
    EXPECT_TRUE(z.out.lines().empty());
    ASSERT_EQ(z.ax.calls().size(), 1u) << "the cached item is pressed without a lookup";
    EXPECT_EQ(z.ax.calls()[0], (FakeAccessibility::Call{AXOp::press, "Mute Audio", ax::success}));
}

TEST(ZoomMeetingApp, AFailedPressEmptiesTheCacheAndTheNextToggleLooksAgain) {
    Zoom z;
    z.meeting({"Mute Audio"});
    ASSERT_EQ(z.app.toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    z.out.clear();

    z.item("Mute Audio")->stale = true;
    EXPECT_EQ(z.app.toggleMute(MeetingStatus::offMute), MeetingStatus::error);
    EXPECT_EQ(z.out.take(),
              (Lines{"UNSUCCESS PRESSING", "Unexpected TOGGLE error: HushGremlin.SwiftAXError"}));
    EXPECT_EQ(z.app.muteButton(), nullptr);

    // A new meeting menu with a new item.
    z.menuBar->children.erase(z.menuBar->children.begin() + 2);
    z.meeting({"Mute Audio"});
    EXPECT_EQ(z.app.toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    EXPECT_EQ(z.out.take(), Lines{"GETTING BUTTON"});
    EXPECT_EQ(z.app.muteButton(), z.item("Mute Audio"));
}

TEST(ZoomMeetingApp, UnsupportedPressCountsAsDone) {
    Zoom z;
    z.meeting({"Mute Audio"});
    z.ax.fail(AXOp::press, ax::actionUnsupported);
    EXPECT_EQ(z.app.toggleMute(MeetingStatus::offMute), MeetingStatus::offMute);
    EXPECT_EQ(z.out.lines(), (Lines{"GETTING BUTTON", "UNSUPPORTED"}));
    EXPECT_NE(z.app.muteButton(), nullptr);
}

TEST(ZoomMeetingApp, ToggleWithoutAButton) {
    struct Row {
        const char* what;
        std::function<void(Zoom&)> arrange;
        Lines printed;
    };
    const std::vector<Row> rows = {
        {"not running", [](Zoom& z) { z.apps.clear(); }, {"GETTING BUTTON", "NO BUTTON"}},
        {"no meeting", [](Zoom&) {}, {"GETTING BUTTON", "NO BUTTON"}},
        {"neither item", [](Zoom& z) { z.meeting({}); }, {"GETTING BUTTON", "NO BUTTON"}},
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
        Zoom z;
        row.arrange(z);
        EXPECT_EQ(z.app.toggleMute(MeetingStatus::onMute), MeetingStatus::error) << row.what;
        EXPECT_EQ(z.out.lines(), row.printed) << row.what;
        EXPECT_EQ(z.app.muteButton(), nullptr) << row.what;
    }
}

TEST(ZoomMeetingApp, MeetingAppAnswers) {
    Zoom z;
    EXPECT_EQ(z.app.name(), "Zoom");
    EXPECT_EQ(z.app.setupWindowTitle(), "Zoom Setup");
    EXPECT_FALSE(z.app.needsSetup());
    EXPECT_EQ(z.app.makeSetupView({}).kind, SetupView::Kind::empty);
}

} // namespace
} // namespace hg
