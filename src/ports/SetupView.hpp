#pragma once

#include <cstdint>
#include <functional>

namespace hg {

// A meeting app's setup view, described without a toolkit: the shell builds
// the widgets for the kind.
struct SetupView {
    enum class Kind : std::uint8_t {
        empty,    // a plain, empty view
        tupleCLI, // how to install Tuple's command-line tool
    };
    Kind kind = Kind::empty;
    std::function<void()> closeAction; // closes the window that shows the view
};

} // namespace hg
