#include "shells/qt/views/PrefsView.hpp"

#include "core/UserPrefs.hpp"
#include "shells/qt/views/HotkeyRecorderControl.hpp"
#include "shells/qt/views/LaunchAtLoginToggle.hpp"
#include "shells/qt/views/ViewStyle.hpp"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace hg::views {

PrefsView::PrefsView(UserPrefs& prefs, HotkeyRecorder& recorder, LaunchAtLogin& launchAtLogin,
                     std::function<void()> showAbout, const QString& notice, QWidget* parent)
    : QWidget(parent), prefs_(prefs), showAbout_(std::move(showAbout)),
      redraw_(*this, [this] { redraw(); }) {
    auto* column = new QVBoxLayout(this);
    column->setAlignment(Qt::AlignHCenter);
    // Tight enough that everything but the microphone's two switches fits the
    // window's 300 x 200; the window grows to show those.
    column->setContentsMargins(10, 6, 10, 0);
    column->setSpacing(4);

    auto* shortcutRow = new QHBoxLayout;
    shortcutRow->addStretch();
    shortcutRow->addWidget(new QLabel(QStringLiteral("Mute Shortcut:"), this));
    auto* field = new HotkeyRecorderControl(recorder, this);
    field->setMaximumWidth(100);
    shortcutRow->addWidget(field);
    shortcutRow->addStretch();
    column->addLayout(shortcutRow);

    auto* hint = makeText(
        notice.isEmpty() ? QStringLiteral("Double tap to toggle resting status") : notice, this);
    makeItalic(*hint);
    if (notice.isEmpty()) {
        makeGrey(*hint);
    }
    column->addWidget(hint);

    column->addWidget(
        new LaunchAtLoginToggle(launchAtLogin, QStringLiteral("Start Hush Gremlin on login"), this),
        0, Qt::AlignHCenter);
    column->addWidget(makeDivider(this));
    // On two lines: on one, the switch alone would widen the window past 300.
    otherApps_ =
        new QCheckBox(QStringLiteral("Also mute the microphone\nin other call apps"), this);
    otherApps_->setAccessibleName(QStringLiteral("Also mute the microphone in other call apps"));
    column->addWidget(otherApps_, 0, Qt::AlignHCenter);

    auto* muteOnJoin = new QVBoxLayout;
    muteOnJoin->setSpacing(2);
    auto* heading = new QLabel(QStringLiteral("Mute on join:"), this);
    makeHeadline(*heading);
    muteOnJoin->addWidget(heading);
    zoom_ = new QCheckBox(QStringLiteral("Zoom"), this);
    tuple_ = new QCheckBox(QStringLiteral("Tuple"), this);
    microphone_ = new QCheckBox(QStringLiteral("Microphone"), this);
    muteOnJoin->addWidget(zoom_);
    muteOnJoin->addWidget(tuple_);
    muteOnJoin->addWidget(microphone_);
    column->addLayout(muteOnJoin);
    column->addWidget(makeDivider(this));

    auto* buttons = new QHBoxLayout;
    auto* update = new QPushButton(QStringLiteral("Check For Updates..."), this);
    auto* about = new QPushButton(QStringLiteral("About..."), this);
    update->setAutoDefault(false);
    if (const auto& off = prefs_.updatesOffReason()) {
        update->setEnabled(false);
        update->setToolTip(QString::fromStdString(*off));
    }
    about->setAutoDefault(false);
    buttons->addWidget(update);
    buttons->addWidget(about);
    column->addLayout(buttons);
    column->addSpacing(5);

    // clicked, not toggled: a redraw must not write the value back.
    connect(zoom_, &QCheckBox::clicked, this, [this](bool on) { prefs_.setMuteOnJoinZoom(on); });
    connect(tuple_, &QCheckBox::clicked, this, [this](bool on) { prefs_.setMuteOnJoinTuple(on); });
    connect(microphone_, &QCheckBox::clicked, this,
            [this](bool on) { prefs_.setMuteOnJoinMicrophone(on); });
    connect(otherApps_, &QCheckBox::clicked, this,
            [this](bool on) { prefs_.setMuteMicrophoneInOtherApps(on); });
    connect(update, &QPushButton::clicked, this, [this] {
        if (const auto& callback = prefs_.checkForUpdatesCallback()) {
            callback();
        }
    });
    connect(about, &QPushButton::clicked, this, [this] {
        if (showAbout_) {
            showAbout_();
        }
    });

    redraw();
    redraw_.observe(prefs_.objectWillChange());
}

void PrefsView::redraw() {
    zoom_->setChecked(prefs_.muteOnJoinZoom());
    tuple_->setChecked(prefs_.muteOnJoinTuple());
    microphone_->setChecked(prefs_.muteOnJoinMicrophone());
    otherApps_->setChecked(prefs_.muteMicrophoneInOtherApps());
}

} // namespace hg::views
