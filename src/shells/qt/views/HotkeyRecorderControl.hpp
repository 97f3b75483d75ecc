#pragma once

#include "shells/qt/views/RedrawScheduler.hpp"

#include <QWidget>

namespace hg {

class HotkeyRecorder;

namespace views {

// The shortcut field: draws itself from the recorder's state, starts or stops
// recording on a click and cancels it when it loses the focus. The keys
// themselves reach the recorder through the local key monitor it holds, not
// through this widget. `recorder` must outlive the control. To accessibility
// clients it is a button named "Mute Shortcut" whose value is the text shown
// and whose Press action does what a click does.
class HotkeyRecorderControl final : public QWidget {
    Q_OBJECT

public:
    explicit HotkeyRecorderControl(HotkeyRecorder& recorder, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

    // A click: starts recording (taking the focus), or stops it.
    void press();
    [[nodiscard]] QString shownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    HotkeyRecorder& recorder_;
    RedrawScheduler redraw_;
};

} // namespace views
} // namespace hg
