#include "shells/qt/HelpAndVersion.hpp"

#include <string_view>

namespace hg {

namespace {

constexpr std::string_view helpText =
    R"(Usage: hushgremlin [COMMAND]
See and control your microphone's mute state in Zoom and Tuple from the
system tray, with a push-to-talk shortcut.

Without a command, starts HushGremlin (or shows the Preferences of the one
already running). Commands for a running HushGremlin:
  toggle        mute or unmute the call
  mute, unmute  put the call in that state (exit 1 when there is no call)
  press         press the shortcut (hold: push-to-talk; press twice quickly:
                the new state stays)
  release       release the shortcut
  status        print the status: notRunning, noMeeting, onMute, offMute,
                setupError or error; --json: as one JSON object;
                --follow: now and at each change, until interrupted
  preferences   show the Preferences window
  debug         show the debug panel (the menu's hidden row, for desktops
                whose window manager takes Alt+click)

Options:
  -h, --help    show this help and exit
  --version     show the version and exit

Settings live in ~/.config/HushGremlin/HushGremlin.conf. Diagnostics are
printed on standard output.
)";

} // namespace

std::optional<int> answerHelpOrVersion(int argc, const char* const* argv, std::ostream& out) {
    if (argc < 2 || argv[1] == nullptr) {
        return std::nullopt;
    }
    const std::string_view argument = argv[1];
    if (argument == "--help" || argument == "-h") {
        out << helpText << std::flush;
        return 0;
    }
    if (argument == "--version") {
        out << "hushgremlin " << HG_VERSION << "\n"
            << "Copyright (C) 2026 The HushGremlin developers\n"
            << "License MIT: <https://opensource.org/licenses/MIT>\n"
            << "This is free software: you are free to change and redistribute it.\n"
            << "There is NO WARRANTY, to the extent permitted by law.\n"
            << std::flush;
        return 0;
    }
    return std::nullopt;
}

} // namespace hg
