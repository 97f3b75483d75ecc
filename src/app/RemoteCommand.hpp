#pragma once

#include "core/MeetingStatus.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace hg {

// The commands scripts may give the running program, by every way in: the
// command line, the session bus, Apple Events and the URL scheme. Nothing
// else gets through: no argument of any of them reaches a shell, a path or a
// preference.
enum class RemoteCommand { toggle, mute, unmute, press, release, preferences, debug, status };

// "toggle", "mute", ...
[[nodiscard]] std::string_view toWord(RemoteCommand command);
// The command a word names, exactly as toWord() writes it; none otherwise.
[[nodiscard]] std::optional<RemoteCommand> commandFromWord(std::string_view word);

// hushgremlin://toggle, mute, unmute, press, release or preferences; the
// scheme in any case, one trailing "/" allowed, nothing else (no query, no
// path, no user or port). `status` reads and changes nothing, so a link has
// no use for it; `debug` is for desktops where the menu's hidden row is out
// of reach, which a Mac is not. None for anything else.
[[nodiscard]] std::optional<RemoteCommand> commandFromUrl(std::string_view url);

// What an explicit mute or unmute came to.
enum class MuteResult {
    done,    // the call is in the asked state (also when it already was)
    noCall,  // no meeting, or its state is unknown: nothing was asked
    refused, // the app was asked and the state did not change
};

// The one line a script's user reads when a mute (`muted`) or unmute did not
// end in the asked state, `shown` being the status after it.
[[nodiscard]] std::string muteFailureLine(MuteResult result, bool muted, MeetingStatus shown);

// `hushgremlin COMMAND [--follow] [--json]`: the options belong to `status`.
struct CommandLine {
    RemoteCommand command = RemoteCommand::status;
    bool follow = false;
    bool json = false;

    // The arguments after the program's name; none when they are not a
    // command line of the client.
    [[nodiscard]] static std::optional<CommandLine> parse(std::span<const std::string_view> args);
    static constexpr std::string_view usage =
        "Usage: hushgremlin [toggle | mute | unmute | press | release | preferences | debug | "
        "status [--follow] [--json]]";
};

} // namespace hg
