#include "apps/TupleState.hpp"

#include "apps/Utf8.hpp"

#include <nlohmann/json.hpp>

namespace hg {

MeetingStatus decodeTupleState(std::string_view output) {
    // No JSON text holds a raw NUL (not even inside a string), but the parser
    // takes one for the end of its input and would accept what comes before.
    if (output.size() > maxTupleStateBytes || !utf8::isValid(output) ||
        output.find('\0') != std::string_view::npos) {
        return MeetingStatus::error;
    }
    // Too deep is found as the parser descends; whatever it then builds is
    // thrown away (the size limit bounds that work).
    bool tooDeep = false;
    const auto state = nlohmann::json::parse(
        output.begin(), output.end(),
        [&tooDeep](int depth, nlohmann::json::parse_event_t event, nlohmann::json& /*parsed*/) {
            if ((event == nlohmann::json::parse_event_t::object_start ||
                 event == nlohmann::json::parse_event_t::array_start) &&
                depth >= maxTupleStateDepth) {
                tooDeep = true;
            }
            return !tooDeep;
        },
        false);
    if (tooDeep || state.is_discarded() || !state.is_object()) {
        return MeetingStatus::error;
    }
    const auto inCall = state.find("in_call");
    if (inCall == state.end() || !inCall->is_boolean()) {
        return MeetingStatus::error;
    }
    if (!inCall->get<bool>()) {
        return MeetingStatus::noMeeting;
    }
    const auto call = state.find("call");
    if (call == state.end() || !call->is_object()) {
        return MeetingStatus::error;
    }
    const auto muted = call->find("muted");
    if (muted == call->end() || !muted->is_boolean()) {
        return MeetingStatus::error;
    }
    return muted->get<bool>() ? MeetingStatus::onMute : MeetingStatus::offMute;
}

} // namespace hg
