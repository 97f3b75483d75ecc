#pragma once

#include <functional>

namespace hg {

class HotkeyRecorder;
class LaunchAtLogin;
class UserPrefs;

namespace mac {

// The preferences (an NSView): the shortcut field, the launch-at-login
// switch, the switch for the system microphone, the mute-on-join switches
// and the update and About buttons. Keeps nothing of its own: every switch
// writes its object at once and redraws when the object announces a change.
// Laid out for a 300-point-wide window, a little taller than 200 points.
// Returned retained once, for (__bridge_transfer NSView*); the objects must
// outlive it.
[[nodiscard]] void* makePrefsView(UserPrefs& prefs, HotkeyRecorder& recorder,
                                  LaunchAtLogin& launchAtLogin, std::function<void()> showAbout);

} // namespace mac
} // namespace hg
