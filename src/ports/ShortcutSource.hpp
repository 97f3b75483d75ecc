#pragma once

#include "ports/Shortcut.hpp"

namespace hg {

// The shortcut the user has recorded, for a backend that must know it before
// its events come (to grab it, or to register it with the desktop). Read
// afresh on every call, so a newly recorded shortcut counts at once.
class ShortcutSource {
public:
    virtual ~ShortcutSource() = default;
    [[nodiscard]] virtual Shortcut current() const = 0;
};

} // namespace hg
