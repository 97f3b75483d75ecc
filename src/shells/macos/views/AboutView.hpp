#pragma once

#include <string>

namespace hg::mac {

// Who made the program and what it is built on (an NSView): the application
// icon ("AppIcon"), "v" and `version`, credits, contact links, the two
// outside components, a copyright line. Links open in the default browser or
// mail program. Returned retained once, for (__bridge_transfer NSView*).
[[nodiscard]] void* makeAboutView(const std::string& version);

} // namespace hg::mac
