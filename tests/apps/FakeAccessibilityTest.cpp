#include "platform/fake/FakeAccessibility.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

// The simulator relies on this order: injected failure, then no trust, then
// staleness.
TEST(FakeAccessibility, FailurePrecedence) {
    FakeAccessibility ax;
    auto element = FakeAXElement::make("AXMenuItem", "Mute Audio");
    element->stale = true;
    const AXElementRef ref = element;

    EXPECT_EQ(ax.copyAttributeValue(ref, "AXTitle").error, ax::apiDisabled);
    ax.setTrusted(true);
    EXPECT_EQ(ax.copyAttributeValue(ref, "AXTitle").error, ax::invalidUIElement);
    EXPECT_EQ(ax.performAction(ref, "AXPress"), ax::invalidUIElement);
    ax.setTrusted(false);
    ax.fail(AXOp::title, ax::cannotComplete);
    EXPECT_EQ(ax.copyAttributeValue(ref, "AXTitle").error, ax::cannotComplete);
    EXPECT_EQ(ax.copyAttributeValue(ref, "AXRole").error, ax::apiDisabled);
    ax.heal();
    ax.setTrusted(true);
    element->stale = false;
    const auto title = ax.copyAttributeValue(ref, "AXTitle");
    EXPECT_EQ(title.error, ax::success);
    EXPECT_EQ(std::get<std::string>(title.value), "Mute Audio");
}

TEST(FakeAccessibility, PressesKeepIdentityAndAreRecordedWithTheTitleBefore) {
    FakeAccessibility ax;
    ax.setTrusted(true);
    auto item = FakeAXElement::make("AXMenuItem", "Mute Audio");
    int presses = 0;
    item->onPress = [&] {
        ++presses;
        item->title = "Unmute Audio";
        return ax::success;
    };
    std::vector<FakeAccessibility::Call> seen;
    ax.onCall = [&](const FakeAccessibility::Call& c) { seen.push_back(c); };

    EXPECT_EQ(ax.performAction(item, "AXPress"), ax::success);
    ax.fail(AXOp::press, ax::cannotComplete);
    EXPECT_EQ(ax.performAction(item, "AXPress"), ax::cannotComplete);
    EXPECT_EQ(presses, 1) << "a failed press changes nothing";
    const std::vector<FakeAccessibility::Call> expected = {
        {AXOp::press, "Mute Audio", ax::success},
        {AXOp::press, "Unmute Audio", ax::cannotComplete}};
    EXPECT_EQ(ax.calls(), expected);
    EXPECT_EQ(seen, expected);
}

TEST(FakeAccessibility, StaleMarksAWholeSubtree) {
    auto app = FakeAXElement::make("AXApplication", "zoom.us");
    app->menuBar = FakeAXElement::make("AXMenuBar", std::nullopt);
    auto item = app->menuBar->add("AXMenuBarItem", "Meeting");
    auto leaf = item->add("AXMenu", "Meeting")->add("AXMenuItem", "Mute Audio");
    EXPECT_EQ(app->findByTitle("Mute Audio"), leaf);
    item->markStale();
    EXPECT_TRUE(leaf->stale);
    EXPECT_FALSE(app->menuBar->stale);
}

} // namespace
} // namespace hg
