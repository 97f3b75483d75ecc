#pragma once

#include <string_view>

namespace hg {

class LaunchAtLogin;

namespace mac {

// The launch-at-login switch (a check box titled `label`): shows the live
// state of the login item, asked afresh whenever it is drawn, when it
// appears, when its window becomes key and after the component announces a
// change; a click turns the item on or off. Returned retained once, for
// (__bridge_transfer NSButton*); `launchAtLogin` must outlive it.
[[nodiscard]] void* makeLaunchAtLoginToggle(LaunchAtLogin& launchAtLogin, std::string_view label);

} // namespace mac
} // namespace hg
