#pragma once

#include "ports/Windows.hpp"

namespace hg::mac {

// The view that shows a window's content: the preferences, the debug view, a
// setup guide or the About view. Returns a new NSView retained once, as an
// opaque pointer; the window takes it over with (__bridge_transfer NSView*).
// The objects the content refers to must outlive the view. Main thread only.
[[nodiscard]] void* makeContentView(const WindowContent& content);

} // namespace hg::mac
