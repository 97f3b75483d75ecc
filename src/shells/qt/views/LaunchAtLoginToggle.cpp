#include "shells/qt/views/LaunchAtLoginToggle.hpp"

#include "app/LaunchAtLogin.hpp"

#include <QEvent>
#include <QSignalBlocker>

namespace hg::views {

LaunchAtLoginToggle::LaunchAtLoginToggle(LaunchAtLogin& launchAtLogin, const QString& label,
                                         QWidget* parent)
    : QCheckBox(label, parent), launchAtLogin_(launchAtLogin),
      redraw_(*this, [this] { redraw(); }) {
    redraw();
    redraw_.observe(launchAtLogin_.objectWillChange());
    // toggled, not clicked: the accessibility "Toggle" action and the
    // keyboard write as a click does; a redraw blocks the signal and does not.
    connect(this, &QCheckBox::toggled, this,
            [this](bool checked) { launchAtLogin_.setEnabled(checked); });
}

void LaunchAtLoginToggle::showEvent(QShowEvent* event) {
    redraw();
    QCheckBox::showEvent(event);
}

void LaunchAtLoginToggle::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        redraw();
    }
    QCheckBox::changeEvent(event);
}

void LaunchAtLoginToggle::redraw() {
    const QSignalBlocker quiet(this);
    setChecked(launchAtLogin_.isEnabled());
}

} // namespace hg::views
