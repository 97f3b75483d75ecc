#include "app/RemoteCommand.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace hg {

namespace {

constexpr std::array<std::pair<RemoteCommand, std::string_view>, 8> words{{
    {RemoteCommand::toggle, "toggle"},
    {RemoteCommand::mute, "mute"},
    {RemoteCommand::unmute, "unmute"},
    {RemoteCommand::press, "press"},
    {RemoteCommand::release, "release"},
    {RemoteCommand::preferences, "preferences"},
    {RemoteCommand::debug, "debug"},
    {RemoteCommand::status, "status"},
}};

constexpr std::string_view scheme = "hushgremlin://";

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

} // namespace

std::string_view toWord(RemoteCommand command) {
    for (const auto& [each, word] : words) {
        if (each == command) {
            return word;
        }
    }
    return "status";
}

std::optional<RemoteCommand> commandFromWord(std::string_view word) {
    for (const auto& [command, each] : words) {
        if (each == word) {
            return command;
        }
    }
    return std::nullopt;
}

std::optional<RemoteCommand> commandFromUrl(std::string_view url) {
    if (!startsWithIgnoringCase(url, scheme)) {
        return std::nullopt;
    }
    std::string_view rest = url.substr(scheme.size());
    if (rest.ends_with('/')) {
        rest.remove_suffix(1);
    }
    const auto command = commandFromWord(rest);
    if (!command || *command == RemoteCommand::status || *command == RemoteCommand::debug) {
        return std::nullopt;
    }
    return command;
}

std::string muteFailureLine(MuteResult result, bool muted, MeetingStatus shown) {
    const std::string verb = muted ? "mute" : "unmute";
    const std::string status = " (status " + std::string(toString(shown)) + ")";
    if (result == MuteResult::noCall) {
        return "No call to " + verb + status;
    }
    return "The meeting app did not " + verb + status;
}

std::optional<CommandLine> CommandLine::parse(std::span<const std::string_view> args) {
    if (args.empty()) {
        return std::nullopt;
    }
    const auto command = commandFromWord(args.front());
    if (!command) {
        return std::nullopt;
    }
    CommandLine line{.command = *command};
    for (const std::string_view option : args.subspan(1)) {
        bool& flag = option == "--follow" ? line.follow : line.json;
        if (*command != RemoteCommand::status || (option != "--follow" && option != "--json") ||
            flag) {
            return std::nullopt;
        }
        flag = true;
    }
    return line;
}

} // namespace hg
