#pragma once

namespace hg::mac {

// The program as its own command: `HushGremlin toggle|mute|unmute|press|
// release|preferences|status [--follow] [--json]` (link it as `hushgremlin`)
// asks the running program by Apple Events and ends, with the same output
// and exit statuses as on Linux: 0 when done, 1 when the program does not
// run, does not answer, or the call did not end in the asked state (one line
// on standard error saying which), 2 for an unknown command. `--follow`
// listens for the program's status notification. Never starts the program.
[[nodiscard]] bool isScriptingCommand(int argc, char** argv);
[[nodiscard]] int runScriptingClient(int argc, char** argv);

} // namespace hg::mac
