#pragma once

#include "ports/LocalKeyMonitor.hpp"

#include <QObject>
#include <functional>
#include <map>
#include <optional>

class QKeyEvent;

namespace hg {

// Sees the key events that reach this application before its widgets do,
// through an application-wide event filter that is installed only while a
// handler exists (the filter costs a call per event of every kind).
//
// Key presses become keyDown events; presses and releases of modifier keys
// become flagsChanged events; other releases are not reported. Key codes and
// flags are converted to the macOS vocabulary: from the native key code when
// the platform's converter knows it (X11 key codes, macOS virtual key codes),
// else from the Qt key. Main thread only.
class QtLocalKeyMonitor final : public QObject, public LocalKeyMonitor {
    Q_OBJECT

public:
    // The macOS virtual key code of a native key event, or nothing to fall back
    // on the Qt key.
    using NativeKeyCodeConverter = std::function<std::optional<std::uint16_t>(const QKeyEvent&)>;

    explicit QtLocalKeyMonitor(NativeKeyCodeConverter converter = {});
    ~QtLocalKeyMonitor() override;
    QtLocalKeyMonitor(const QtLocalKeyMonitor&) = delete;
    QtLocalKeyMonitor& operator=(const QtLocalKeyMonitor&) = delete;

    std::uint64_t add(Handler handler) override;
    void remove(std::uint64_t token) override;

    // The event in the macOS vocabulary, or nothing for events that are not
    // reported (releases of ordinary keys, keys without a macOS counterpart).
    [[nodiscard]] std::optional<LocalKeyEvent> translate(const QKeyEvent& event) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool dispatch(const LocalKeyEvent& event);
    [[nodiscard]] bool alreadySeen(const QKeyEvent& event);

    NativeKeyCodeConverter converter_;
    std::map<std::uint64_t, Handler> handlers_;
    std::uint64_t nextToken_ = 0;
    bool filterInstalled_ = false;
    // A key event travels from the window to the focus widget and up its
    // parents, passing the application filter each time; only its first
    // passage counts.
    const QKeyEvent* lastEvent_ = nullptr;
    std::uint64_t lastTimestamp_ = 0;
    int lastKey_ = 0;
    int lastType_ = 0;
    bool lastConsumed_ = false;
};

} // namespace hg
