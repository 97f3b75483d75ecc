#include "shells/qt/QtWindows.hpp"

#include "shells/qt/QtApplication.hpp"
#include "shells/qt/QtUserDefaults.hpp"
#include "shells/qt/views/ContentViewFactory.hpp"

#include <QGuiApplication>
#include <QHideEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

namespace hg {

class QtWindows::HostWindow final : public QWidget {
public:
    HostWindow(const WindowSpec& description, QtUserDefaults& frames)
        : frames_(frames), key_(frameKey(description.frameAutosaveName)),
          panel_(description.panel) {}

    [[nodiscard]] bool isPanel() const { return panel_; }

    // The frame is the client area's rectangle in screen coordinates: what the
    // window manager adds around it is its own business, and saving the
    // decorated frame would move the window by its border on every restore.
    void saveFrame() {
        if (!key_.isEmpty()) {
            frames_.setValue(key_, geometry());
        }
    }
    // False when nothing usable was saved: no value, an empty rectangle, or
    // one whose centre lies on no screen any more. A usable rectangle is made
    // to fit the free area of its screen: no larger, and moved inside it.
    bool restoreFrame() {
        if (key_.isEmpty()) {
            return false;
        }
        const QRect saved = frames_.value(key_).toRect();
        const QScreen* screen =
            saved.isEmpty() ? nullptr : QGuiApplication::screenAt(saved.center());
        if (screen == nullptr) {
            return false;
        }
        const QRect area = screen->availableGeometry();
        QRect placed(saved.topLeft(), saved.size().boundedTo(area.size()));
        placed.moveLeft(std::clamp(placed.left(), area.left(), area.right() - placed.width() + 1));
        placed.moveTop(std::clamp(placed.top(), area.top(), area.bottom() - placed.height() + 1));
        setGeometry(placed);
        return true;
    }

protected:
    void hideEvent(QHideEvent* event) override {
        saveFrame();
        QWidget::hideEvent(event);
    }

private:
    QtUserDefaults& frames_;
    QString key_;
    bool panel_ = false;
};

namespace {

Qt::WindowFlags flagsFor(const WindowSpec& description) {
    Qt::WindowFlags flags = description.panel ? (Qt::Tool | Qt::WindowStaysOnTopHint) : Qt::Window;
    flags |= Qt::CustomizeWindowHint;
    if ((description.styleMask & windowstyle::titled) != 0) {
        flags |= Qt::WindowTitleHint;
    } else {
        flags |= Qt::FramelessWindowHint;
    }
    if ((description.styleMask & windowstyle::closable) != 0) {
        flags |= Qt::WindowCloseButtonHint;
    }
    if ((description.styleMask & windowstyle::miniaturizable) != 0) {
        flags |= Qt::WindowMinimizeButtonHint;
    }
    if ((description.styleMask & windowstyle::resizable) != 0) {
        flags |= Qt::WindowMaximizeButtonHint;
    }
    return flags;
}

void centre(QWidget& window) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return;
    }
    QRect frame(QPoint(0, 0), window.size());
    frame.moveCenter(screen->availableGeometry().center());
    window.move(frame.topLeft());
}

} // namespace

QString QtWindows::frameKey(const std::string& autosaveName) {
    if (autosaveName.empty()) {
        return {};
    }
    return QStringLiteral("WindowFrames/") + QString::fromStdString(autosaveName);
}

QtWindows::QtWindows(QtUserDefaults& frames, QtApplication& application)
    : frames_(frames), application_(application) {}

QtWindows::~QtWindows() {
    saveFrames();
}

WindowId QtWindows::create(WindowSpec description) {
    auto window = std::make_unique<HostWindow>(description, frames_);
    window->setWindowFlags(flagsFor(description));
    // Qt names a window with an empty title after the application on X11 and
    // Wayland; a blank one leaves an untitled window untitled there too.
    window->setWindowTitle(description.title && !description.title->empty()
                               ? QString::fromStdString(*description.title)
                               : QStringLiteral(" "));
    if (description.panel) {
        window->setAttribute(Qt::WA_ShowWithoutActivating);
        window->setAttribute(Qt::WA_MacAlwaysShowToolWindow);
    }
    auto* layout = new QVBoxLayout(window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(views::makeContentView(description.content, window.get()));
    layout->activate();

    // The content decides the least size it can be shown at; a smaller size
    // in the WindowSpec would clip it.
    const QSize size = QSize(description.contentWidth, description.contentHeight)
                           .expandedTo(window->minimumSizeHint());
    if ((description.styleMask & windowstyle::resizable) != 0) {
        window->resize(size);
    } else {
        window->setFixedSize(size);
    }
    centre(*window);
    window->restoreFrame();

    const auto id = ++nextId_;
    windows_.emplace(id, std::move(window));
    return id;
}

void QtWindows::makeKeyAndOrderFront(WindowId id) {
    const auto it = windows_.find(id);
    if (it == windows_.end()) {
        return;
    }
    HostWindow& window = *it->second;
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    if (application_.takeActivation() && !window.isPanel()) {
        window.activateWindow();
    }
}

void QtWindows::close(WindowId id) {
    if (const auto it = windows_.find(id); it != windows_.end()) {
        it->second->close();
    }
}

QWidget* QtWindows::window(WindowId id) const {
    const auto it = windows_.find(id);
    return it == windows_.end() ? nullptr : it->second.get();
}

void QtWindows::destroyAll() {
    saveFrames();
    windows_.clear();
}

void QtWindows::saveFrames() {
    for (auto& [id, window] : windows_) {
        if (window->isVisible()) {
            window->saveFrame();
        }
    }
}

} // namespace hg
