#include "shells/qt/views/LaunchAtLoginToggle.hpp"

#include "app/LaunchAtLogin.hpp"

#include <QEvent>

namespace hg::views {

LaunchAtLoginToggle::LaunchAtLoginToggle(LaunchAtLogin& launchAtLogin, const QString& label,
                                         QWidget* parent)
    : QCheckBox(label, parent), launchAtLogin_(launchAtLogin),
      redraw_(*this, [this] { redraw(); }) {
    redraw();
    redraw_.observe(launchAtLogin_.objectWillChange());
    // clicked, not toggled: only the user's clicks write; a redraw does not.
    connect(this, &QCheckBox::clicked, this,
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
    setChecked(launchAtLogin_.isEnabled());
}

} // namespace hg::views
