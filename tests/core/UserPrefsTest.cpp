#include "core/UserPrefs.hpp"

#include "backends/fake/FakeUserDefaults.hpp"

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
}

TEST(UserPrefs, StoredValuesAreReadAndNotWrittenBack) {
    // A value of another kind is read by the store's bool rules and kept.
    for (const auto& stored : {DefaultsValue{false}, DefaultsValue{std::string("garbage")}}) {
        FakeUserDefaults defaults;
        defaults.setObject("muteOnJoin_Zoom", stored);
        const int writesBefore = defaults.writeCount();
        const UserPrefs prefs(defaults, {});
        EXPECT_FALSE(prefs.muteOnJoinZoom()) << stored.index();
        EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), stored);
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
    EXPECT_EQ(storedWhenAnnounced, std::vector<bool>{true}) << "announced before the write";
    const int writes = defaults.writeCount();
    prefs.setMuteOnJoinZoom(false);
    EXPECT_EQ(storedWhenAnnounced.size(), 2U) << "an unchanged value is announced too";
    EXPECT_EQ(defaults.writeCount(), writes + 1) << "and written again";
    prefs.setMuteOnJoinTuple(false);

    const UserPrefs reopened(defaults, {});
    EXPECT_FALSE(reopened.muteOnJoinZoom());
    EXPECT_FALSE(reopened.muteOnJoinTuple());
}

TEST(UserPrefs, ReloadReadsWhatAnotherWriterStoredAndAnnouncesOnlyChanges) {
    FakeUserDefaults defaults;
    UserPrefs prefs(defaults, {});
    int announced = 0;
    auto sub = prefs.objectWillChange().subscribe([&] { ++announced; });
    prefs.reload();
    EXPECT_EQ(announced, 0);

    // Another program (or instance) changed the store behind this object.
    defaults.setBool("muteOnJoin_Zoom", false);
    defaults.removeObject("muteOnJoin_Tuple");
    defaults.setBool("muteMicrophoneInOtherApps", true);
    const int writes = defaults.writeCount();
    prefs.reload();
    EXPECT_FALSE(prefs.muteOnJoinZoom());
    EXPECT_TRUE(prefs.muteMicrophoneInOtherApps());
    EXPECT_EQ(announced, 2);
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Tuple"), DefaultsValue{true})
        << "the absent key is stored again, decided on the store as it is now";
    EXPECT_EQ(defaults.objectForKey("muteOnJoin_Zoom"), DefaultsValue{false});
    EXPECT_EQ(defaults.writeCount(), writes + 1);
}

} // namespace
} // namespace hg
