#include "shells/qt/views/HotkeyRecorderControl.hpp"

#include "hotkey/HotkeyRecorder.hpp"

#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QHideEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace hg::views {

namespace {

// What a screen reader or a switch device sees of the field: a button whose
// one action is a click.
class RecorderAccessible final : public QAccessibleWidget {
public:
    explicit RecorderAccessible(HotkeyRecorderControl* control)
        : QAccessibleWidget(control, QAccessible::Button) {}

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction() && widget()->isEnabled()) {
            control()->press();
        }
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? control()->shownText() : QAccessibleWidget::text(kind);
    }

private:
    [[nodiscard]] HotkeyRecorderControl* control() const {
        return static_cast<HotkeyRecorderControl*>(widget());
    }
};

QAccessibleInterface* recorderAccessible(const QString& /*className*/, QObject* object) {
    auto* control = qobject_cast<HotkeyRecorderControl*>(object);
    return control != nullptr ? new RecorderAccessible(control) : nullptr;
}

} // namespace

HotkeyRecorderControl::HotkeyRecorderControl(HotkeyRecorder& recorder, QWidget* parent)
    : QWidget(parent), recorder_(recorder), redraw_(*this, [this] { update(); }) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(&recorderAccessible);
        return true;
    }();
    (void)factoryInstalled;
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Mute Shortcut"));
    redraw_.observe(recorder_.objectWillChange());
}

QSize HotkeyRecorderControl::sizeHint() const {
    return {100, 24};
}

QSize HotkeyRecorderControl::minimumSizeHint() const {
    return {60, 24};
}

void HotkeyRecorderControl::paintEvent(QPaintEvent* /*event*/) {
    const bool recording = recorder_.isRecording();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    painter.fillPath(path, palette().color(recording ? QPalette::Highlight : QPalette::Base));
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.drawPath(path);

    QFont font = this->font();
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(palette().color(recording ? QPalette::HighlightedText : QPalette::Text));
    painter.drawText(rect(), Qt::AlignCenter, shownText());
}

QString HotkeyRecorderControl::shownText() const {
    return QString::fromStdString(recorder_.shownText());
}

void HotkeyRecorderControl::press() {
    // Recording wants the focus so that leaving the field cancels it.
    if (!recorder_.isRecording()) {
        setFocus(Qt::MouseFocusReason);
    }
    recorder_.click();
}

void HotkeyRecorderControl::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    press();
    event->accept();
}

void HotkeyRecorderControl::focusOutEvent(QFocusEvent* event) {
    // The window going to the background keeps its focused control, as a
    // window keeps its first responder; only a real move of the focus (another
    // control, the window closing) cancels.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
        recorder_.focusLost();
    }
    QWidget::focusOutEvent(event);
}

void HotkeyRecorderControl::hideEvent(QHideEvent* event) {
    // A closed window loses its focused control for good.
    if (recorder_.isRecording()) {
        recorder_.focusLost();
    }
    QWidget::hideEvent(event);
}

} // namespace hg::views
