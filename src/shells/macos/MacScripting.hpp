#pragma once

#include "core/Observable.hpp"
#include "ports/LineSink.hpp"

#include <memory>

namespace hg {

class RemoteControl;

namespace mac {

// The name of the distributed notification the program posts when its status
// changes (userInfo: "status", "app"), and with status "unavailable" when it
// quits: `hushgremlin status --follow` listens for it instead of polling.
inline constexpr char statusNotification[] = "app.hushgremlin.HushGremlin.status";
inline constexpr char bundleIdentifier[] = "app.hushgremlin.HushGremlin";
// The error numbers of the `mute` and `unmute` Apple Events; their message
// is the line to show.
inline constexpr int noCallError = 1001;
inline constexpr int refusedError = 1002;

// The program's automation surface on macOS: hushgremlin:// links (the
// kAEGetURL Apple Event), the AppleScript dictionary's commands and its
// read-only `status` (HushGremlin.sdef), and the status notification. Each
// turns into one command of the remote control; nothing else is reachable.
// Links that arrive while the program is still starting wait for started().
// Build it before launching finishes, so that a link that launched the
// program is not lost. Main thread only.
class MacScripting {
public:
    MacScripting(RemoteControl& remote, LineSink& out);
    ~MacScripting();
    MacScripting(const MacScripting&) = delete;
    MacScripting& operator=(const MacScripting&) = delete;

    // The application is built: runs the links that came before.
    void started();

    // What the Objective-C handlers reach; defined in the implementation.
    struct State;

private:
    std::unique_ptr<State> state_;
};

} // namespace mac
} // namespace hg
