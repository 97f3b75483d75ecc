#pragma once

#include "shells/qt/views/RedrawScheduler.hpp"

#include <QCheckBox>

namespace hg {

class LaunchAtLogin;

namespace views {

// The launch-at-login switch: shows the live state of the login item and
// turns it on or off when the user clicks it. It reads the state again each
// time it is shown and each time its window is activated, so an entry made
// or removed outside the program shows; and whenever the component announces
// a change, so several toggles stay in step. `launchAtLogin` must outlive the
// toggle.
class LaunchAtLoginToggle final : public QCheckBox {
    Q_OBJECT

public:
    LaunchAtLoginToggle(LaunchAtLogin& launchAtLogin, const QString& label,
                        QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void redraw();

    LaunchAtLogin& launchAtLogin_;
    RedrawScheduler redraw_;
};

} // namespace views
} // namespace hg
