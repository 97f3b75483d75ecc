#include "X11TestDesktop.hpp"

#include "XvfbDisplay.hpp"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QProcess>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

namespace hg::test {

namespace {

// The key settle() types: the grave accent, which no test shortcut uses.
constexpr quint32 settleKeyCode = 49;

std::string& reason() {
    static std::string text;
    return text;
}

} // namespace

int VictimWindow::presses(quint32 x11KeyCode) const {
    int count = 0;
    for (const Key& key : keys) {
        count += key.press && key.x11KeyCode == x11KeyCode ? 1 : 0;
    }
    return count;
}

int VictimWindow::releases(quint32 x11KeyCode) const {
    int count = 0;
    for (const Key& key : keys) {
        count += !key.press && key.x11KeyCode == x11KeyCode ? 1 : 0;
    }
    return count;
}

void VictimWindow::keyPressEvent(QKeyEvent* event) {
    keys.push_back({true, event->nativeScanCode()});
}

void VictimWindow::keyReleaseEvent(QKeyEvent* event) {
    keys.push_back({false, event->nativeScanCode()});
}

void VictimWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), height(), Qt::white);
}

// What shared() makes, ended before main() returns: Qt must not outlive it.
struct X11TestDesktop::Parts {
    std::unique_ptr<XvfbDisplay> display;
    std::unique_ptr<QGuiApplication> application;
    std::unique_ptr<VictimWindow> victim;
    std::unique_ptr<X11TestDesktop> desktop;
};

namespace {

std::unique_ptr<X11TestDesktop::Parts>& parts() {
    static std::unique_ptr<X11TestDesktop::Parts> made;
    return made;
}

class Teardown final : public ::testing::Environment {
public:
    void TearDown() override {
        if (auto& made = parts()) {
            made->desktop.reset();
            made->victim.reset();
            made->application.reset();
            made->display.reset();
        }
    }
};

[[maybe_unused]] const auto* const teardown = ::testing::AddGlobalTestEnvironment(new Teardown());

} // namespace

X11TestDesktop* X11TestDesktop::shared() {
    if (parts()) {
        return parts()->desktop.get();
    }
    parts() = std::make_unique<Parts>();
    Parts& made = *parts();
    made.display = std::make_unique<XvfbDisplay>();
    if (made.display->name().empty()) {
        reason() = made.display->failure();
        return nullptr;
    }
    setenv("DISPLAY", made.display->name().c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    static int argc = 1;
    static char name[] = "hg-x11-tests";
    static char* argv[] = {name, nullptr};
    made.application = std::make_unique<QGuiApplication>(argc, argv);

    made.victim = std::make_unique<VictimWindow>();
    VictimWindow* victim = made.victim.get();
    victim->setGeometry(0, 0, 320, 240);
    victim->show();
    victim->requestActivate();
    if (!waitUntil([victim] { return victim->isExposed() && victim->isActive(); })) {
        reason() = "the test window never got the keyboard focus";
        return nullptr;
    }
    made.desktop.reset(new X11TestDesktop());
    made.desktop->victim_ = victim;
    return made.desktop.get();
}

const std::string& X11TestDesktop::skipReason() {
    return reason();
}

void X11TestDesktop::xdotool(std::initializer_list<std::string> arguments) {
    QStringList list;
    for (const std::string& argument : arguments) {
        list << QString::fromStdString(argument);
    }
    QProcess::execute(QStringLiteral("xdotool"), list);
}

bool X11TestDesktop::waitUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > limit.count()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

bool X11TestDesktop::settle() {
    const int before = victim_->releases(settleKeyCode);
    xdotool({"key", "grave"});
    return waitUntil([&] { return victim_->releases(settleKeyCode) > before; });
}

} // namespace hg::test
