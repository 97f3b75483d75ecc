#pragma once

#include "ports/LoginItems.hpp"

#include <string>

namespace hg {

// Launch at login through an XDG autostart entry: the file
// hushgremlin.desktop in the user's autostart folder ($XDG_CONFIG_HOME/
// autostart, or ~/.config/autostart), which desktop sessions run at login.
//
// The entry is the only state, read afresh on every call: the item is on
// exactly when the file exists and the desktop has not switched it off
// (Hidden=true, or X-GNOME-Autostart-enabled=false, which desktops' own
// settings write instead of deleting it). Entries installed system-wide
// (/etc/xdg/autostart) are not looked at.
class XdgLoginItems final : public LoginItems {
public:
    // `programPath`: the installed program, run by the entry; its TryExec key
    // names it too, so that a session skips the entry once the program is
    // gone (the entry is the user's and outlives an uninstall). `configHome`:
    // the configuration folder; empty means the XDG rules above, looked up at
    // every call.
    explicit XdgLoginItems(std::string programPath, std::string configHome = {});

    // enabled, notRegistered, or notFound when the entry exists but cannot be
    // read.
    [[nodiscard]] Status status() const override;
    // Writes the entry, replacing one that is there, all at once.
    std::optional<std::string> registerItem() override;
    // Removes the entry; nothing to remove is no failure.
    std::optional<std::string> unregisterItem() override;

    [[nodiscard]] std::string entryPath() const;

    // The program path as one argument of a desktop entry's Exec key.
    [[nodiscard]] static std::string execArgument(const std::string& path);

private:
    std::string programPath_;
    std::string configHome_;
};

} // namespace hg
