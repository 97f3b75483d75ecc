// Trust on Linux: the accessibility bus is reachable and accessibility is on.
// Runs on the private desktop, whose GSettings live in memory; each case
// still puts the switch back.

#include "DesktopSession.hpp"
#include "apps/AXAccess.hpp"
#include "apps/SwiftAXError.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeRunningApplications.hpp"
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/AtspiBus.hpp"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg::test {
namespace {

using ::testing::ElementsAre;

class AtspiTrust : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        makeQtApplication();
        before_ = switch_.isEnabled();
        if (!before_) {
            GTEST_SKIP() << "the accessibility bus launcher (at-spi2-core) does not answer";
        }
        ASSERT_TRUE(switch_.setEnabled(false));
    }
    void TearDown() override {
        if (before_) {
            EXPECT_TRUE(switch_.setEnabled(*before_));
            EXPECT_EQ(switch_.isEnabled(), before_);
        }
    }

    AtspiBus switch_;
    std::optional<bool> before_;
};

TEST_F(AtspiTrust, FollowsTheDesktopSwitchAndOnlyThePromptTurnsItOn) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    EXPECT_FALSE(ax.isProcessTrusted(false));
    EXPECT_EQ(switch_.isEnabled(), false) << "asking without a prompt changed the switch";

    // Like the permission dialog, the prompt's answer is the one from before it.
    EXPECT_FALSE(ax.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), true);
    EXPECT_TRUE(ax.isProcessTrusted(false));

    ASSERT_TRUE(switch_.setEnabled(false));
    EXPECT_FALSE(ax.isProcessTrusted(false));
}

TEST_F(AtspiTrust, AlwaysOnApplicationsNeedNoSwitch) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    EXPECT_TRUE(ax.isProcessTrusted(false));
    EXPECT_TRUE(ax.isProcessTrusted(true));
    EXPECT_EQ(switch_.isEnabled(), false) << "a trusted process prompted anyway";
}

TEST_F(AtspiTrust, AnUnreachableBusIsDisabledAccessibilityAndNeverPrompts) {
    ::setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/hg-a11y-bus", 1);
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    FakeRunningApplications apps;
    BufferLineSink out;
    AXAccess access(ax, apps, out);
    EXPECT_FALSE(ax.isProcessTrusted(true));
    try {
        (void)access.copyMenuBar(static_cast<ProcessId>(::getpid()));
        ADD_FAILURE() << "read through a bus that is not there";
    } catch (const SwiftAXError& e) {
        EXPECT_EQ(e.axErr, ax::apiDisabled);
    }
    EXPECT_TRUE(ax.registeredProcessIds().empty());
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    EXPECT_THAT(out.take(), ElementsAre("DISABELD"));
    EXPECT_EQ(switch_.isEnabled(), false);
}

} // namespace
} // namespace hg::test
