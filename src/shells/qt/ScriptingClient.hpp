#pragma once

#include "ports/LineSink.hpp"

#include <string_view>

namespace hg {

// The program as its own client: `hushgremlin toggle|press|release|status|
// preferences` asks the running program over the session bus and ends.
// `status` prints the shown status's case name. Every answer or failure is
// one line on standard output; the exit status is 0 on success, 1 when the
// program is not running or does not answer, 2 for an unknown command.
// Never starts the program.
class ScriptingClient {
public:
    // Whether the program was started as a client: its first argument is a
    // word, not one of Qt's options.
    [[nodiscard]] static bool isCommand(int argc, char** argv);
    // Runs the command in argv[1] and returns the exit status. Makes its own
    // Qt core application: no display is needed.
    [[nodiscard]] static int run(int argc, char** argv);

    // A second start of the program: asks the first to show its preferences,
    // says so and returns the exit status.
    [[nodiscard]] static int handOver(LineSink& out);
};

} // namespace hg
