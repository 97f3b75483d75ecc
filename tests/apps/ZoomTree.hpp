#pragma once

#include "backends/fake/BufferLineSink.hpp"
#include "backends/fake/FakeAccessibility.hpp"
#include "backends/fake/FakeRunningApplications.hpp"

#include <string>
#include <vector>

namespace hg {

// Zoom's menu bar as the adapter meets it: Apple, zoom.us, (Meeting), Window,
// each a menu-bar item whose one child is its menu. Trusted and running.
struct ZoomTree {
    static constexpr ProcessId pid = 4242;

    FakeAccessibility ax;
    FakeRunningApplications apps;
    BufferLineSink out;
    std::shared_ptr<FakeAXElement> application = FakeAXElement::make("AXApplication", "zoom.us");
    std::shared_ptr<FakeAXElement> menuBar = FakeAXElement::make("AXMenuBar", std::nullopt);
    std::shared_ptr<FakeAXElement> meetingItem; // null outside a meeting

    ZoomTree() {
        application->menuBar = menuBar;
        menuBar->add(menu("Apple", {"About This Mac"}));
        menuBar->add(menu("zoom.us", {"About Zoom", "Quit Zoom"}));
        menuBar->add(menu("Window", {"Minimize"}));
        ax.setTrusted(true);
        ax.setApplication(pid, application);
        apps.add("us.zoom.xos", pid);
    }

    static std::shared_ptr<FakeAXElement> menu(const std::string& title,
                                               const std::vector<std::string>& items) {
        auto item = FakeAXElement::make("AXMenuBarItem", title);
        auto menu = item->add("AXMenu", title);
        for (const auto& t : items) {
            menu->add("AXMenuItem", t);
        }
        return item;
    }

    // Enters a meeting whose menu holds `muteItems` and then "Start Video".
    void meeting(std::vector<std::string> muteItems, const std::string& title = "Meeting") {
        muteItems.emplace_back("Start Video");
        meetingItem = menu(title, muteItems);
        menuBar->children.insert(menuBar->children.begin() + 2, meetingItem);
    }

    [[nodiscard]] std::shared_ptr<FakeAXElement> item(const std::string& title) const {
        return menuBar->findByTitle(title);
    }
};

} // namespace hg
