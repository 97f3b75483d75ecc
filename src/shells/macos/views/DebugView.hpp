#pragma once

namespace hg {

class UserData;

namespace mac {

// The inside of the status store, live (an NSView): the shown and the read
// status, accessibility access, the recent snapshots (newest on the left)
// and two buttons that drive the store by hand. Redraws once on the next
// turn after the store announces changes. Returned retained once, for
// (__bridge_transfer NSView*); `userData` must outlive it.
[[nodiscard]] void* makeDebugView(UserData& userData);

} // namespace mac
} // namespace hg
