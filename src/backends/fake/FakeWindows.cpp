#include "backends/fake/FakeWindows.hpp"

#include <algorithm>

namespace hg {

WindowId FakeWindows::create(WindowSpec description) {
    const WindowId id = windows_.size() + 1;
    windows_.push_back(Window{id, std::move(description), false, 0});
    return id;
}

const FakeWindows::Window* FakeWindows::find(WindowId id) const {
    if (id == 0 || id > windows_.size()) {
        return nullptr;
    }
    return &windows_[id - 1];
}

FakeWindows::Window* FakeWindows::find(WindowId id) {
    if (id == 0 || id > windows_.size()) {
        return nullptr;
    }
    return &windows_[id - 1];
}

const FakeWindows::Window* FakeWindows::findShown(const std::optional<std::string>& title) const {
    for (const WindowId id : front_) {
        const Window* window = find(id);
        if (window != nullptr && window->description.title == title) {
            return window;
        }
    }
    return nullptr;
}

void FakeWindows::makeKeyAndOrderFront(WindowId id) {
    Window* window = find(id);
    if (window == nullptr) {
        return;
    }
    window->shown = true;
    ++window->frontCount;
    std::erase(front_, id);
    front_.insert(front_.begin(), id);
    if (onFront) {
        onFront(*window);
    }
}

void FakeWindows::close(WindowId id) {
    Window* window = find(id);
    if (window == nullptr || !window->shown) {
        return;
    }
    window->shown = false;
    std::erase(front_, id);
    if (onClosed) {
        onClosed(*window);
    }
}

} // namespace hg
