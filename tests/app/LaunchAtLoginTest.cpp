#include "app/LaunchAtLogin.hpp"

#include "platform/fake/FakeLoginItems.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Status = LoginItems::Status;
using Call = FakeLoginItems::Call;

TEST(LaunchAtLogin, OnlyTheEnabledStateReadsAsOnAndEveryReadAsksTheService) {
    FakeLoginItems items;
    FakeUnifiedLog log;
    LaunchAtLogin launchAtLogin(items, log);
    for (const auto& [status, on] : {std::pair{Status::notRegistered, false},
                                     {Status::enabled, true},
                                     {Status::requiresApproval, false},
                                     {Status::notFound, false}}) {
        items.setStatus(status); // changed in the system's settings
        EXPECT_EQ(launchAtLogin.isEnabled(), on) << static_cast<int>(status);
    }
}

struct SetCase {
    const char* name;
    Status before;
    bool value;
    bool fail;
    std::vector<Call> calls;
    Status after;
    std::vector<std::string> log;
};

TEST(LaunchAtLogin, SettingCallsTheServiceAndLogsOnlyTheFailureThatCounts) {
    const std::vector<SetCase> cases = {
        {"on from off registers",
         Status::notRegistered,
         true,
         false,
         {Call::registerItem},
         Status::enabled,
         {}},
        {"on while on re-registers",
         Status::enabled,
         true,
         false,
         {Call::unregisterItem, Call::registerItem},
         Status::enabled,
         {}},
        {"on while awaiting approval registers again",
         Status::requiresApproval,
         true,
         false,
         {Call::registerItem},
         Status::enabled,
         {}},
        {"off unregisters, also when not registered",
         Status::notRegistered,
         false,
         false,
         {Call::unregisterItem},
         Status::notRegistered,
         {}},
        {"failing register is logged once",
         Status::enabled,
         true,
         true,
         {Call::unregisterItem, Call::registerItem},
         Status::enabled,
         {"Failed to enable launch at login: Operation not permitted"}},
        {"failing unregister is logged as disable",
         Status::enabled,
         false,
         true,
         {Call::unregisterItem},
         Status::enabled,
         {"Failed to disable launch at login: Operation not permitted"}},
    };
    for (const auto& c : cases) {
        FakeLoginItems items;
        FakeUnifiedLog log;
        items.setStatus(c.before);
        items.fail = c.fail;
        LaunchAtLogin launchAtLogin(items, log);
        int announcements = 0;
        bool announcedBeforeCalls = false;
        auto subscription = launchAtLogin.objectWillChange().subscribe([&] {
            ++announcements;
            announcedBeforeCalls = items.calls().empty();
        });
        launchAtLogin.setEnabled(c.value);
        EXPECT_EQ(items.calls(), c.calls) << c.name;
        EXPECT_EQ(items.status(), c.after) << c.name;
        EXPECT_EQ(log.lines(), c.log) << c.name;
        EXPECT_EQ(announcements, 1) << c.name;
        EXPECT_TRUE(announcedBeforeCalls) << c.name;
    }
}

} // namespace
} // namespace hg
