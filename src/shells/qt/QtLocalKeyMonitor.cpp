#include "shells/qt/QtLocalKeyMonitor.hpp"

#include "shells/qt/QtKeyCodes.hpp"

#include <QCoreApplication>
#include <QKeyEvent>
#include <vector>

namespace hg {

namespace {

bool isKeyEvent(const QEvent* event) {
    return event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
           event->type() == QEvent::ShortcutOverride;
}

} // namespace

QtLocalKeyMonitor::QtLocalKeyMonitor(NativeKeyCodeConverter converter)
    : converter_(std::move(converter)) {}

QtLocalKeyMonitor::~QtLocalKeyMonitor() {
    if (filterInstalled_ && QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

std::uint64_t QtLocalKeyMonitor::add(Handler handler) {
    const auto token = ++nextToken_;
    handlers_.emplace(token, std::move(handler));
    if (!filterInstalled_ && QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
        filterInstalled_ = true;
    }
    return token;
}

void QtLocalKeyMonitor::remove(std::uint64_t token) {
    handlers_.erase(token);
    if (handlers_.empty() && filterInstalled_) {
        QCoreApplication::instance()->removeEventFilter(this);
        filterInstalled_ = false;
    }
}

std::optional<LocalKeyEvent> QtLocalKeyMonitor::translate(const QKeyEvent& event) const {
    const int key = event.key();
    std::optional<std::uint16_t> code;
    if (converter_) {
        code = converter_(event);
    }
    if (!code) {
        code = qtkeys::macKeyCode(key, event.modifiers().testFlag(Qt::KeypadModifier));
    }
    // QKeyEvent::modifiers() already folds in the modifier key of the event
    // itself for Shift, Control, Alt and Meta, but not for Super or AltGr;
    // setting or clearing the key's own bit covers them all.
    std::uint64_t flags = qtkeys::macModifierFlags(event.modifiers());
    const std::uint64_t bit = qtkeys::modifierBit(key);
    const bool press = event.type() == QEvent::KeyPress;
    if (bit != 0 || key == Qt::Key_CapsLock) {
        if (!code) {
            return std::nullopt;
        }
        flags = press ? (flags | bit) : (flags & ~bit);
        return LocalKeyEvent{LocalKeyEvent::Type::flagsChanged, *code, flags};
    }
    if (!press || !code) {
        return std::nullopt;
    }
    return LocalKeyEvent{LocalKeyEvent::Type::keyDown, *code, flags};
}

bool QtLocalKeyMonitor::alreadySeen(const QKeyEvent& event) {
    const bool same = &event == lastEvent_ && event.timestamp() == lastTimestamp_ &&
                      event.key() == lastKey_ && static_cast<int>(event.type()) == lastType_;
    lastEvent_ = &event;
    lastTimestamp_ = event.timestamp();
    lastKey_ = event.key();
    lastType_ = static_cast<int>(event.type());
    return same;
}

bool QtLocalKeyMonitor::dispatch(const LocalKeyEvent& event) {
    // Handlers may remove themselves (or others) while being called.
    std::vector<Handler> snapshot;
    snapshot.reserve(handlers_.size());
    for (const auto& [token, handler] : handlers_) {
        snapshot.push_back(handler);
    }
    bool consumed = false;
    for (const auto& handler : snapshot) {
        consumed = handler(event) || consumed;
    }
    return consumed;
}

bool QtLocalKeyMonitor::eventFilter(QObject* watched, QEvent* event) {
    if (!isKeyEvent(event) || handlers_.empty()) {
        return QObject::eventFilter(watched, event);
    }
    if (event->type() == QEvent::ShortcutOverride) {
        // While someone listens, keys reach them before any shortcut of the
        // windows: accepting the override turns the shortcut off for this key.
        event->accept();
        return true;
    }
    // Key events that widgets send each other are not keys the user typed.
    if (!event->spontaneous()) {
        return QObject::eventFilter(watched, event);
    }
    auto* keyEvent = static_cast<QKeyEvent*>(event);
    if (alreadySeen(*keyEvent)) {
        return lastConsumed_;
    }
    const auto translated = translate(*keyEvent);
    lastConsumed_ = translated && dispatch(*translated);
    return lastConsumed_;
}

} // namespace hg
