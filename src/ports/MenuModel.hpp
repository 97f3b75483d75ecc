#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hg {

// What a menu row does when chosen. `none` rows cannot be chosen and show
// disabled.
enum class MenuAction : std::uint8_t {
    none,
    toggleMute,
    openPrefs,
    axError,
    checkUpdate,
    quit,
    debugView,
};

struct MenuRow {
    enum class Kind : std::uint8_t { item, separator };

    Kind kind = Kind::item;
    std::string title;
    MenuAction action = MenuAction::none;
    bool red = false; // title drawn in the platform's red
    int tag = 0;

    [[nodiscard]] bool enabled() const { return kind == Kind::item && action != MenuAction::none; }
    [[nodiscard]] static MenuRow separator() { return MenuRow{Kind::separator, {}, MenuAction::none, false, 0}; }

    friend bool operator==(const MenuRow&, const MenuRow&) = default;
};

// A whole menu, top to bottom. Rows carry no key equivalents.
struct MenuModel {
    std::vector<MenuRow> rows;

    // Index of the first row with `tag`, or -1.
    [[nodiscard]] int indexOfTag(int tag) const {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].kind == MenuRow::Kind::item && rows[i].tag == tag) {
                return static_cast<int>(i);
            }
        }
        return -1;
    }

    friend bool operator==(const MenuModel&, const MenuModel&) = default;
};

} // namespace hg
