#include "backends/fake/FakeUserDefaults.hpp"

#include <gtest/gtest.h>

namespace hg {
namespace {

TEST(UserDefaults, TypedReadsFollowThePlatformConventions) {
    FakeUserDefaults d;
    EXPECT_FALSE(d.boolForKey("absent"));
    EXPECT_FALSE(d.hasObject("absent"));

    d.setObject("yes", std::string("YES"));
    d.setObject("no", std::string("no"));
    d.setObject("num", std::string("  -0042abc"));
    d.setObject("zero", std::int64_t{0});
    d.setObject("data", Bytes{'{', '}'});
    EXPECT_TRUE(d.boolForKey("yes"));
    EXPECT_FALSE(d.boolForKey("no"));
    EXPECT_TRUE(d.boolForKey("num"));
    EXPECT_EQ(d.integerForKey("num"), -42);
    EXPECT_FALSE(d.boolForKey("zero"));
    EXPECT_FALSE(d.boolForKey("data"));
    EXPECT_EQ(d.dataForKey("data"), (Bytes{'{', '}'}));
    EXPECT_FALSE(d.dataForKey("yes").has_value()) << "a text is not a data value";
    EXPECT_EQ(d.stringForKey("zero"), "0");
    EXPECT_FALSE(d.stringForKey("data").has_value());
}

} // namespace
} // namespace hg
