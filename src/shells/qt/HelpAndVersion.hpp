#pragma once

#include <optional>
#include <ostream>

namespace hg {

// `--help` and `--version`, answered before any display is opened. Returns the
// exit status when the first argument was one of them (after writing the
// answer to `out`), or nothing when the program should go on: every other
// argument is left to Qt and to the program's own commands.
[[nodiscard]] std::optional<int> answerHelpOrVersion(int argc, const char* const* argv,
                                                     std::ostream& out);

} // namespace hg
