#include "apps/TupleState.hpp"

#include <gtest/gtest.h>
#include <string>

namespace hg {
namespace {

TEST(TupleState, DecodesOnlyTheDocumentedShape) {
    using S = MeetingStatus;
    struct Row {
        std::string output;
        MeetingStatus status;
    };
    const std::vector<Row> rows = {
        {R"({"in_call": true, "call": {"muted": true}})", S::onMute},
        {R"({"in_call": true, "call": {"muted": false}})", S::offMute},
        {R"({"in_call": false})", S::noMeeting},
        {R"({"in_call": false, "call": {"muted": true}})", S::noMeeting},
        {R"({"in_call": false, "call": 7})", S::noMeeting},
        {"\n { \"in_call\" : true , \"call\" : { \"muted\" : true , \"x\": [1] } , \"v\": null }\n",
         S::onMute},
        {R"({"in_call": true})", S::error},
        {R"({"in_call": true, "call": {}})", S::error},
        {R"({"in_call": true, "call": null})", S::error},
        {R"({"in_call": true, "call": [{"muted": true}]})", S::error},
        {R"({"in_call": true, "call": {"muted": "true"}})", S::error},
        {R"({"in_call": true, "call": {"muted": 1}})", S::error},
        {R"({"in_call": "true", "call": {"muted": true}})", S::error},
        {R"({"in_call": 0})", S::error},
        {R"({"in_call": null})", S::error},
        {R"({"In_Call": false})", S::error},
        {R"({})", S::error},
        {R"([{"in_call": false}])", S::error},
        {R"("in_call")", S::error},
        {"true", S::error},
        {"", S::error},
        {"   ", S::error},
        {R"({"in_call": false)", S::error},
        {R"({"in_call": false} trailing)", S::error},
        {R"({"in_call": false}{"in_call": false})", S::error},
        {"{\"in_call\": false, \"name\": \"\xC3\xA9\"}", S::noMeeting},
        {"{\"in_call\": false, \"name\": \"\xFF\"}", S::error},
        {std::string("{\"in_call\": false}\0", 19), S::error},
        {std::string("{\"in_call\": false}\0garbage", 26), S::error},
        {std::string(10000, '[') + std::string(10000, ']'), S::error},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decodeTupleState(row.output), row.status) << row.output.substr(0, 80);
    }
}

} // namespace
} // namespace hg
