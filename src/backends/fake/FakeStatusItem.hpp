#pragma once

#include "ports/StatusItem.hpp"

#include <vector>

namespace hg {

// A status item that keeps what it was last given and plays the user's part:
// open the menu, choose a row, close it.
class FakeStatusItem final : public StatusItem {
public:
    void setImage(const std::string& name) override {
        image_ = name;
        imageHistory_.push_back(name);
    }
    void setMenu(const MenuModel& menu) override {
        menu_ = menu;
        ++menuSets_;
    }
    void setToolTip(const std::string& text) override { toolTip_ = text; }
    void setHandler(StatusItemHandler* handler) override { handler_ = handler; }

    [[nodiscard]] const std::string& image() const { return image_; }
    [[nodiscard]] const std::vector<std::string>& imageHistory() const { return imageHistory_; }
    [[nodiscard]] const MenuModel& menu() const { return menu_; }
    [[nodiscard]] const std::string& toolTip() const { return toolTip_; }
    [[nodiscard]] int menuSetCount() const { return menuSets_; }
    [[nodiscard]] bool isOpen() const { return open_; }

    // Opens the menu; `modifiers` are the current event's flags, if any.
    void open(std::optional<std::uint64_t> modifiers) {
        if (open_) {
            return;
        }
        open_ = true;
        if (handler_ != nullptr) {
            handler_->menuWillOpen(modifiers);
        }
    }
    void close() {
        if (!open_) {
            return;
        }
        open_ = false;
        if (handler_ != nullptr) {
            handler_->menuDidClose();
        }
    }
    // Closes the menu, then runs the row's action. False when no enabled row
    // has that title or the menu is not open (nothing happens then).
    bool pick(const std::string& title) {
        if (!open_) {
            return false;
        }
        for (const auto& row : menu_.rows) {
            if (row.enabled() && row.title == title) {
                const auto action = row.action;
                close();
                if (handler_ != nullptr) {
                    handler_->rowChosen(action);
                }
                return true;
            }
        }
        return false;
    }

private:
    StatusItemHandler* handler_ = nullptr;
    std::string image_;
    std::string toolTip_;
    std::vector<std::string> imageHistory_;
    MenuModel menu_;
    int menuSets_ = 0;
    bool open_ = false;
};

} // namespace hg
