#pragma once

namespace hg {

class HotkeyRecorder;

namespace mac {

// The shortcut field (an NSView): draws itself from the recorder's state,
// starts or stops recording on a click, and cancels it when it stops being
// the first responder or its window closes. The keys reach the recorder
// through the local key monitor it holds, not through this view. Returned
// retained once, for (__bridge_transfer NSView*); `recorder` must outlive it.
[[nodiscard]] void* makeHotkeyRecorderControl(HotkeyRecorder& recorder);

} // namespace mac
} // namespace hg
