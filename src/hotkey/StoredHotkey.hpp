#pragma once

#include "hotkey/Hotkey.hpp"
#include "ports/ShortcutSource.hpp"
#include "ports/UserDefaults.hpp"

namespace hg {

// The shortcut in the user-defaults store, for the backends that grab or
// register it.
class StoredHotkey final : public ShortcutSource {
public:
    explicit StoredHotkey(const UserDefaults& defaults) : defaults_(defaults) {}

    [[nodiscard]] Shortcut current() const override { return Hotkey::load(defaults_); }

private:
    const UserDefaults& defaults_;
};

} // namespace hg
