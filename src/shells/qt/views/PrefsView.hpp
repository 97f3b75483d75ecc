#pragma once

#include "shells/qt/views/RedrawScheduler.hpp"

#include <QWidget>
#include <functional>

class QCheckBox;
class QPushButton;

namespace hg {

class HotkeyRecorder;
class LaunchAtLogin;
class UserPrefs;

namespace views {

// The preferences: the shortcut field, the launch-at-login switch, the
// switch for the system microphone, the mute-on-join switches and the update
// and About buttons. Keeps nothing of
// its own: every switch writes its object at once and redraws when the
// object announces a change. The objects must outlive the view. A notice, when
// given, stands in the place of the hint under the shortcut.
class PrefsView final : public QWidget {
    Q_OBJECT

public:
    PrefsView(UserPrefs& prefs, HotkeyRecorder& recorder, LaunchAtLogin& launchAtLogin,
              std::function<void()> showAbout, const QString& notice = {},
              QWidget* parent = nullptr);

    [[nodiscard]] QCheckBox& zoomToggle() { return *zoom_; }
    [[nodiscard]] QCheckBox& tupleToggle() { return *tuple_; }
    [[nodiscard]] QCheckBox& microphoneToggle() { return *microphone_; }
    [[nodiscard]] QCheckBox& otherAppsToggle() { return *otherApps_; }

private:
    void redraw();

    UserPrefs& prefs_;
    std::function<void()> showAbout_;
    QCheckBox* zoom_ = nullptr;
    QCheckBox* tuple_ = nullptr;
    QCheckBox* microphone_ = nullptr;
    QCheckBox* otherApps_ = nullptr;
    RedrawScheduler redraw_;
};

} // namespace views
} // namespace hg
