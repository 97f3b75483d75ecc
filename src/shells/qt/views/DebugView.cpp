#include "shells/qt/views/DebugView.hpp"

#include "core/UserData.hpp"
#include "shells/qt/views/ViewStyle.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QLayoutItem>
#include <QPushButton>
#include <QVBoxLayout>

namespace hg::views {

namespace {

QString caseName(MeetingStatus status) {
    const auto name = toString(status);
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

QString trueFalse(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

QWidget* historyColumn(QWidget* parent) {
    auto* column = new QWidget(parent);
    auto* lines = new QVBoxLayout(column);
    lines->setContentsMargins(2, 0, 2, 0);
    lines->setSpacing(0);
    for (int line = 0; line < 3; ++line) {
        lines->addWidget(makeText({}, column));
    }
    return column;
}

void fillColumn(QWidget& column, const StatusSet& set) {
    const QString texts[] = {caseName(set.truest), caseName(set.read), trueFalse(set.hasAX)};
    const auto labels = column.findChildren<QLabel*>(Qt::FindDirectChildrenOnly);
    for (qsizetype line = 0; line < labels.size() && line < 3; ++line) {
        labels[line]->setText(texts[line]);
    }
}

} // namespace

DebugView::DebugView(UserData& userData, QWidget* parent)
    : QWidget(parent), userData_(userData), redraw_(*this, [this] { redraw(); }) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);

    auto* intro = makeText(
        QStringLiteral("This is a debug menu for HushGremlin. Feel free to close it."), this);
    intro->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    column->addWidget(intro, 1);
    truest_ = makeText({}, this);
    read_ = makeText({}, this);
    ax_ = makeText({}, this);
    column->addWidget(truest_);
    column->addWidget(read_);
    column->addWidget(ax_);
    column->addStretch(1);

    history_ = new QHBoxLayout;
    history_->setAlignment(Qt::AlignHCenter);
    column->addLayout(history_);

    toggleMute_ = new QPushButton(QStringLiteral("Toggle Mute"), this);
    press_ = new QPushButton(QStringLiteral("Press"), this);
    press_->setMaximumSize(100, 24);
    for (auto* button : {toggleMute_, press_}) {
        button->setAutoDefault(false);
        column->addWidget(button, 0, Qt::AlignHCenter);
    }
    connect(toggleMute_, &QPushButton::clicked, this, [this] { userData_.toggleMute(); });
    connect(press_, &QPushButton::clicked, this, [this] { userData_.refreshStatus(); });

    redraw();
    redraw_.observe(userData_.objectWillChange());
}

void DebugView::redraw() {
    truest_->setText(QStringLiteral("Truest Status: ") + caseName(userData_.truestStatus()));
    read_->setText(QStringLiteral("Read Status: ") + caseName(userData_.readStatus()));
    ax_->setText(QStringLiteral("AXAccess: ") + trueFalse(userData_.hasAXAccess()));
    toggleMute_->setEnabled(isInMeeting(userData_.readStatus()));

    // The columns are reused: the store announces a change every second.
    const auto& history = userData_.statusHistory();
    const auto wanted = static_cast<int>(history.size());
    while (history_->count() > wanted) {
        QLayoutItem* item = history_->takeAt(history_->count() - 1);
        delete item->widget();
        delete item;
    }
    while (history_->count() < wanted) {
        history_->addWidget(historyColumn(this));
    }
    for (int i = 0; i < wanted; ++i) {
        fillColumn(*history_->itemAt(i)->widget(), history[static_cast<std::size_t>(i)]);
    }
}

} // namespace hg::views
