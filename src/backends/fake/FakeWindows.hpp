#pragma once

#include "ports/Windows.hpp"

#include <functional>
#include <string_view>
#include <vector>

namespace hg {

// Windows that exist only as records: what was built, what is shown, and the
// order in which shown windows were brought to the front.
class FakeWindows final : public Windows {
public:
    struct Window {
        WindowId id = 0;
        WindowSpec description;
        bool shown = false;
        int frontCount = 0; // how often it was brought to the front
    };

    WindowId create(WindowSpec description) override;
    void makeKeyAndOrderFront(WindowId id) override;
    void close(WindowId id) override;

    // Null for unknown ids. Pointers stay valid until the next create().
    [[nodiscard]] const Window* find(WindowId id) const;
    [[nodiscard]] Window* find(WindowId id);
    // The shown window with this title (nullopt: the untitled one), frontmost first.
    [[nodiscard]] const Window* findShown(const std::optional<std::string>& title) const;

    // Every window built, in the order of creation.
    [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }
    // The shown windows, frontmost first.
    [[nodiscard]] const std::vector<WindowId>& frontOrder() const { return front_; }

    // Observers, called after the change: a window brought to the front (built
    // or reused), and a shown window hidden.
    std::function<void(const Window&)> onFront;
    std::function<void(const Window&)> onClosed;

private:
    std::vector<Window> windows_;
    std::vector<WindowId> front_;
};

} // namespace hg
