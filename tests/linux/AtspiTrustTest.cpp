// Trust on Linux: the accessibility bus is reachable and accessibility is on.
// Runs on the private desktop, whose GSettings live in memory; each case
// still puts the switch back.

#include "DesktopSession.hpp"
#include "platform/linux/AtspiAccessibility.hpp"
#include "platform/linux/AtspiBus.hpp"

#include <gtest/gtest.h>

namespace hg::test {
namespace {

class AtspiTrust : public ::testing::Test {
protected:
    void SetUp() override {
        if (DesktopSession::shared() == nullptr) {
            GTEST_SKIP() << "no private desktop here: " << DesktopSession::skipReason();
        }
        const auto enabled = status_.isEnabled();
        if (!enabled) {
            GTEST_SKIP() << "the accessibility bus launcher (at-spi2-core) does not answer";
        }
        before_ = *enabled;
        ASSERT_TRUE(status_.setEnabled(false));
    }
    void TearDown() override {
        if (before_) {
            EXPECT_TRUE(status_.setEnabled(*before_));
            EXPECT_EQ(status_.isEnabled(), before_);
        }
    }

    AtspiBus status_;
    std::optional<bool> before_;
};

TEST_F(AtspiTrust, FollowsTheDesktopSwitchAndOnlyThePromptTurnsItOn) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = false});
    EXPECT_FALSE(ax.isProcessTrusted(false));
    EXPECT_EQ(status_.isEnabled(), false) << "asking without a prompt changed the switch";

    // Like the permission dialog, the prompt's answer is the one from before it.
    EXPECT_FALSE(ax.isProcessTrusted(true));
    EXPECT_EQ(status_.isEnabled(), true);
    EXPECT_TRUE(ax.isProcessTrusted(false));

    ASSERT_TRUE(status_.setEnabled(false));
    EXPECT_FALSE(ax.isProcessTrusted(false));
}

TEST_F(AtspiTrust, AlwaysOnApplicationsNeedNoSwitch) {
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    EXPECT_TRUE(ax.isProcessTrusted(false));
    EXPECT_TRUE(ax.isProcessTrusted(true));
    EXPECT_EQ(status_.isEnabled(), false) << "a trusted process prompted anyway";
}

TEST_F(AtspiTrust, AnUnreachableBusIsNeverTrustedAndNotPrompted) {
    ::setenv("AT_SPI_BUS_ADDRESS", "unix:path=/nonexistent/hg-a11y-bus", 1);
    AtspiAccessibility ax(AtspiAccessibility::Options{.alwaysOn = true});
    const bool trusted = ax.isProcessTrusted(true);
    ::unsetenv("AT_SPI_BUS_ADDRESS");
    EXPECT_FALSE(trusted);
    EXPECT_EQ(status_.isEnabled(), false);
}

} // namespace
} // namespace hg::test
