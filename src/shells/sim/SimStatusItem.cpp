#include "shells/sim/SimStatusItem.hpp"

namespace hg::sim {

void SimStatusItem::setImage(const std::string& name) {
    const bool changed = !hasImage_ || item_.image() != name;
    item_.setImage(name);
    hasImage_ = true;
    if (changed) {
        out_.observe("icon " + name);
    }
    if (onImage) {
        onImage(name);
    }
}

void SimStatusItem::setMenu(const MenuModel& menu) {
    const bool changed = !hasMenu_ || !(item_.menu() == menu);
    item_.setMenu(menu);
    hasMenu_ = true;
    if (changed) {
        out_.observe("menu " + describe(menu));
    }
    if (onMenu) {
        onMenu(menu);
    }
}

std::string SimStatusItem::describe(const MenuModel& menu) {
    std::string text;
    for (const auto& row : menu.rows) {
        if (!text.empty()) {
            text += " | ";
        }
        if (row.kind == MenuRow::Kind::separator) {
            text += "-";
        } else if (!row.enabled()) {
            text += "(" + row.title + ")";
        } else {
            text += (row.red ? "!" : "") + row.title;
        }
    }
    return text;
}

} // namespace hg::sim
