#pragma once

#include <functional>
#include <string>

namespace hg::mac {

// Asks for the accessibility permission (an NSView): a text, a picture of
// the system's settings ("AXPrefPane") and the window's default button, which
// runs `promptAction`; Return presses it. A `globeKeyNote` that is not empty
// is shown under the text. Returned retained once, for
// (__bridge_transfer NSView*).
[[nodiscard]] void* makeEnableAXView(std::function<void()> promptAction,
                                     const std::string& globeKeyNote);

} // namespace hg::mac
