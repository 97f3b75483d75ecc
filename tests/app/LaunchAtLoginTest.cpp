#include "app/LaunchAtLogin.hpp"

#include "backends/fake/FakeLoginItems.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

using Status = LoginItems::Status;
using Call = FakeLoginItems::Call;

TEST(LaunchAtLogin, OnlyTheEnabledStateReadsAsOnAndEveryReadAsksTheService) {
    FakeLoginItems items;
    FakeUnifiedLog log;
    const LaunchAtLogin launchAtLogin(items, log);
    for (const auto& [status, on] : {std::pair{Status::enabled, true},
                                     {Status::requiresApproval, false},
                                     {Status::notFound, false}}) {
        items.setStatus(status); // changed in the system's settings
        EXPECT_EQ(launchAtLogin.isEnabled(), on) << static_cast<int>(status);
    }
}

TEST(LaunchAtLogin, SettingCallsTheServiceAndLogsOnlyTheFailureThatCounts) {
    const auto r = Call::registerItem;
    const auto u = Call::unregisterItem;
    struct Case {
        Status before;
        bool value;
        bool fail;
        std::vector<Call> calls;
        std::string log; // empty: none
    };
    const Case cases[] = {
        {Status::notRegistered, true, false, {r}, ""},
        {Status::enabled, true, false, {u, r}, ""}, // re-registering repairs a lost item
        {Status::requiresApproval, true, false, {r}, ""},
        {Status::notRegistered, false, false, {u}, ""},
        {Status::enabled,
         true,
         true,
         {u, r},
         "Failed to enable launch at login: Operation not permitted"},
        {Status::enabled,
         false,
         true,
         {u},
         "Failed to disable launch at login: Operation not permitted"},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        const auto& c = cases[i];
        FakeLoginItems items;
        FakeUnifiedLog log;
        items.setStatus(c.before);
        items.fail = c.fail;
        LaunchAtLogin launchAtLogin(items, log);
        std::vector<std::size_t> callsWhenAnnounced;
        auto subscription = launchAtLogin.objectWillChange().subscribe(
            [&] { callsWhenAnnounced.push_back(items.calls().size()); });
        launchAtLogin.setEnabled(c.value);
        EXPECT_EQ(items.calls(), c.calls);
        EXPECT_EQ(log.lines(), c.log.empty() ? std::vector<std::string>{} : std::vector{c.log});
        EXPECT_EQ(callsWhenAnnounced, std::vector<std::size_t>{0}) << "once, before the calls";
    }
}

} // namespace
} // namespace hg
