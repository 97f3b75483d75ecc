#pragma once

#include "backends/fake/FakeStatusItem.hpp"
#include "shells/sim/SimOutput.hpp"

#include <functional>
#include <string>

namespace hg::sim {

// The status item as the simulator shows it: forwards to a FakeStatusItem,
// which plays the user's part, and traces each change of image or rows.
class SimStatusItem final : public StatusItem {
public:
    SimStatusItem(FakeStatusItem& item, SimOutput& out) : item_(item), out_(out) {}

    void setImage(const std::string& name) override;
    void setMenu(const MenuModel& menu) override;
    void setToolTip(const std::string& text) override { item_.setToolTip(text); }
    void setHandler(StatusItemHandler* handler) override { item_.setHandler(handler); }

    [[nodiscard]] FakeStatusItem& item() { return item_; }

    // Observers of every call, also those that change nothing on screen.
    std::function<void(const MenuModel&)> onMenu;
    std::function<void(const std::string&)> onImage;

    // "(No meeting detected) | - | Preferences... | - | Quit"
    [[nodiscard]] static std::string describe(const MenuModel& menu);

private:
    FakeStatusItem& item_;
    SimOutput& out_;
    bool hasImage_ = false;
    bool hasMenu_ = false;
};

} // namespace hg::sim
