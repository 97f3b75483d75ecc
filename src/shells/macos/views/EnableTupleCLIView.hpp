#pragma once

namespace hg::mac {

// How to install Tuple's command-line tool (an NSView): static texts and a
// rounded box of steps. Returned retained once, for
// (__bridge_transfer NSView*).
[[nodiscard]] void* makeEnableTupleCLIView();

} // namespace hg::mac
