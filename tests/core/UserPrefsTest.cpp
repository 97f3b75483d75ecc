#include "core/UserPrefs.hpp"

#include "platform/fake/FakeUserDefaults.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

TEST(UserPrefs, FirstStartStoresTrueForBothSwitches) {
    FakeUserDefaults defaults;
    const UserPrefs prefs(defaults, {});
    EXPECT_TRUE(prefs.muteOnJoinZoom());
    EXPECT_TRUE(prefs.muteOnJoinTuple());
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), DefaultsValue{true});
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Tuple"), DefaultsValue{true});
    EXPECT_EQ(defaults.writeCount(), 2);
}

TEST(UserPrefs, StoredValuesAreReadAndNotWrittenBack) {
    struct Case {
        DefaultsValue stored;
        bool shown;
    };
    // Values of another kind than bool are read by the store's bool rules and
    // kept as they are.
    const Case cases[] = {
        {DefaultsValue{false}, false},
        {DefaultsValue{true}, true},
        {DefaultsValue{std::string("NO")}, false},
        {DefaultsValue{std::string("garbage")}, false},
        {DefaultsValue{std::int64_t{1}}, true},
        {DefaultsValue{Bytes{0x01}}, false},
    };
    for (const auto& c : cases) {
        FakeUserDefaults defaults;
        defaults.setObject("muteOnJoin_Zoom", c.stored);
        const int writesBefore = defaults.writeCount();
        const UserPrefs prefs(defaults, {});
        EXPECT_EQ(prefs.muteOnJoinZoom(), c.shown) << c.stored.index();
        EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), c.stored);
        EXPECT_TRUE(prefs.muteOnJoinTuple()) << "the absent key still starts true";
        EXPECT_EQ(defaults.writeCount(), writesBefore + 1) << "only the absent key is written";
    }
}

TEST(UserPrefs, SettersAnnounceThenWriteThroughOnEverySet) {
    FakeUserDefaults defaults;
    UserPrefs prefs(defaults, {});
    std::vector<bool> storedWhenAnnounced;
    auto sub = prefs.objectWillChange().subscribe(
        [&] { storedWhenAnnounced.push_back(defaults.boolForKey("muteOnJoin_Zoom")); });

    prefs.setMuteOnJoinZoom(false);
    EXPECT_FALSE(prefs.muteOnJoinZoom());
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), DefaultsValue{false});
    EXPECT_EQ(storedWhenAnnounced, std::vector<bool>{true}) << "announced before the write";

    const int writes = defaults.writeCount();
    prefs.setMuteOnJoinZoom(false);
    EXPECT_EQ(storedWhenAnnounced.size(), 2U) << "an unchanged value is announced too";
    EXPECT_EQ(defaults.writeCount(), writes + 1) << "and written again";

    prefs.setMuteOnJoinTuple(false);
    EXPECT_FALSE(prefs.muteOnJoinTuple());
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Tuple"), DefaultsValue{false});
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), DefaultsValue{false});

    const UserPrefs reopened(defaults, {});
    EXPECT_FALSE(reopened.muteOnJoinZoom());
    EXPECT_FALSE(reopened.muteOnJoinTuple());
}

TEST(UserPrefs, KeepsTheUpdateCallback) {
    FakeUserDefaults defaults;
    int checks = 0;
    const UserPrefs prefs(defaults, [&] { ++checks; });
    prefs.checkForUpdatesCallback()();
    EXPECT_EQ(checks, 1);
}

} // namespace
} // namespace hg
