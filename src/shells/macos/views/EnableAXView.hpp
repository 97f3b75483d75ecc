#pragma once

#include <functional>

namespace hg::mac {

// Asks for the accessibility permission (an NSView): a text, a picture of
// the system's settings ("AXPrefPane") and the window's default button, which
// runs `promptAction`; Return presses it. Returned retained once, for
// (__bridge_transfer NSView*).
[[nodiscard]] void* makeEnableAXView(std::function<void()> promptAction);

} // namespace hg::mac
