#pragma once

#include "ports/Windows.hpp"

#include <QWidget>
#include <map>
#include <memory>

namespace hg {

class QtApplication;
class QtUserDefaults;

// The application's windows as top-level widgets. Each window is built once,
// centred on the screen, with the size, title and buttons its WindowSpec asks for;
// closing only hides it. Its frame is kept in the settings under the window's
// autosave name and restored the next time the window is built. The floating
// panel stays above other windows and does not take the focus when shown.
// Main thread only.
class QtWindows final : public Windows {
public:
    // The key under which a window's frame is kept: the group "WindowFrames",
    // then the autosave name.
    [[nodiscard]] static QString frameKey(const std::string& autosaveName);

    // `frames` and `application` must outlive this object.
    QtWindows(QtUserDefaults& frames, QtApplication& application);
    ~QtWindows() override;
    QtWindows(const QtWindows&) = delete;
    QtWindows& operator=(const QtWindows&) = delete;

    WindowId create(WindowSpec description) override;
    void makeKeyAndOrderFront(WindowId id) override;
    void close(WindowId id) override;

    // The window's widget, or null for an unknown id.
    [[nodiscard]] QWidget* window(WindowId id) const;
    [[nodiscard]] std::size_t count() const { return windows_.size(); }

    // Writes the frames of all windows now (also done on every hide).
    void saveFrames();
    // Saves the frames of the shown windows and destroys every window. Their
    // views refer to objects of the application: call this before the
    // application delegate goes.
    void destroyAll();

private:
    class HostWindow;

    QtUserDefaults& frames_;
    QtApplication& application_;
    std::map<WindowId, std::unique_ptr<HostWindow>> windows_;
    WindowId nextId_ = 0;
};

} // namespace hg
