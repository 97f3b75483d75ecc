#pragma once

#include <QRasterWindow>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace hg::test {

// A window that records the keys it receives, standing for whatever
// application the user types into.
class VictimWindow final : public QRasterWindow {
public:
    struct Key {
        bool press;
        quint32 x11KeyCode;
    };
    std::vector<Key> keys;

    [[nodiscard]] int presses(quint32 x11KeyCode) const;
    [[nodiscard]] int releases(quint32 x11KeyCode) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

// The X display and Qt application of the keyboard tests: a private Xvfb, a
// QGuiApplication on it, and a focused victim window. Made once per process.
class X11TestDesktop {
public:
    // Null when no X server can run here; skipReason() says why.
    static X11TestDesktop* shared();
    static const std::string& skipReason();

    struct Parts;

    VictimWindow& victim() { return *victim_; }

    // Runs xdotool with these arguments against the test display.
    static void xdotool(std::initializer_list<std::string> arguments);
    // Processes events until `done` holds; false when it did not within 5 s.
    static bool waitUntil(const std::function<bool()>& done,
                          std::chrono::milliseconds limit = std::chrono::seconds(5));
    // Types a key the tests never use and waits until the victim has its
    // release: every event sent before has then been handled.
    bool settle();

private:
    X11TestDesktop() = default;
    VictimWindow* victim_ = nullptr;
};

} // namespace hg::test
