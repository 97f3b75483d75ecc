#include "backends/macos/MacUserDefaults.hpp"

#include "hotkey/Hotkey.hpp"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace hg {
namespace {

// A suite of this test run's own, removed afterwards.
class MacUserDefaultsTest : public ::testing::Test {
protected:
    void TearDown() override {
        [NSUserDefaults.standardUserDefaults removePersistentDomainForName:suite];
    }

    NSString* suite = [NSString stringWithFormat:@"app.hushgremlin.tests.%d", getpid()];
    MacUserDefaults defaults{suite.UTF8String};
};

TEST_F(MacUserDefaultsTest, ValuesKeepTheirKinds) {
    const std::vector<DefaultsValue> values = {true, std::int64_t{1}, 1.5, std::string("Gr\u00FCn"),
                                               Bytes{0, 1, 255}};
    for (const DefaultsValue& value : values) {
        defaults.setObject("value", value);
        EXPECT_EQ(defaults.objectForKey("value"), value) << value.index();
    }
    defaults.removeObject("value");
    EXPECT_FALSE(defaults.hasObject("value"));
}

TEST_F(MacUserDefaultsTest, TheShortcutIsStoredAsData) {
    const Hotkey controlCommandK{40, modifier::control | modifier::command};
    controlCommandK.save(defaults);
    EXPECT_EQ(Hotkey::load(defaults), controlCommandK);

    defaults.setObject(Hotkey::defaultsKey, std::string(controlCommandK.toJson()));
    EXPECT_EQ(Hotkey::load(defaults), Hotkey::defaultHotkey());
}

} // namespace
} // namespace hg
