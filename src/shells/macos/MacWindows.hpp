#pragma once

#include "ports/Windows.hpp"

#include <memory>

namespace hg {

// The application's windows as NSWindows, and the floating panel as an
// NSPanel, each with the view the content asks for
// (shells/macos/views/ContentViewFactory.hpp).
//
// A window's frame is kept in the user defaults under its autosave name and
// restored when it is built; a restored frame that lies on no screen any more
// is brought back, centred. Windows are never released: closing hides them.
// Main thread only.
class MacWindows final : public Windows {
public:
    MacWindows();
    ~MacWindows() override;
    MacWindows(const MacWindows&) = delete;
    MacWindows& operator=(const MacWindows&) = delete;

    WindowId create(WindowSpec description) override;
    void makeKeyAndOrderFront(WindowId id) override;
    void close(WindowId id) override;

    // Takes every window and its view away. The views refer to the
    // application's objects: this goes before they do.
    void destroyAll();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace hg
