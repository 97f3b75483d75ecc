#include "app/StatusReport.hpp"

#include "menu/GremlinMenu.hpp"

#include <nlohmann/json.hpp>

namespace hg {

namespace {

std::string_view shortWord(std::optional<MeetingStatus> status) {
    if (!status) {
        return "off";
    }
    switch (*status) {
    case MeetingStatus::onMute:
        return "muted";
    case MeetingStatus::offMute:
        return "live";
    case MeetingStatus::notRunning:
    case MeetingStatus::noMeeting:
        return "idle";
    case MeetingStatus::setupError:
        return "setup";
    case MeetingStatus::error:
        break;
    }
    return "error";
}

} // namespace

std::optional<MeetingStatus> StatusReport::statusNamed(std::string_view name) {
    for (const MeetingStatus status :
         {MeetingStatus::notRunning, MeetingStatus::noMeeting, MeetingStatus::onMute,
          MeetingStatus::offMute, MeetingStatus::setupError, MeetingStatus::error}) {
        if (name == toString(status)) {
            return status;
        }
    }
    return std::nullopt;
}

std::string StatusReport::line() const {
    return status ? std::string(toString(*status)) : std::string(notRunningLine);
}

std::string StatusReport::json() const {
    const std::string name = status ? std::string(toString(*status)) : std::string(unavailable);
    nlohmann::ordered_json object;
    object["status"] = name;
    object["app"] = app.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(app);
    object["text"] = shortWord(status);
    object["tooltip"] =
        status ? GremlinMenu::toolTip(*status, app) : std::string("Hush Gremlin: not running");
    object["class"] = name;
    // Names from a meeting app may hold bytes that are not UTF-8.
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace hg
