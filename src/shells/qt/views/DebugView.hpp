#pragma once

#include "shells/qt/views/RedrawScheduler.hpp"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace hg {

class UserData;

namespace views {

// The inside of the status store, live: the shown and the read status,
// accessibility access, the recent snapshots (newest on the left), and two
// buttons that drive the store by hand. `userData` must outlive the view.
class DebugView final : public QWidget {
    Q_OBJECT

public:
    explicit DebugView(UserData& userData, QWidget* parent = nullptr);

    [[nodiscard]] QPushButton& toggleMuteButton() { return *toggleMute_; }
    [[nodiscard]] QPushButton& pressButton() { return *press_; }
    // One column per snapshot, each a widget holding three labels.
    [[nodiscard]] QHBoxLayout& historyRow() { return *history_; }

private:
    void redraw();

    UserData& userData_;
    QLabel* truest_ = nullptr;
    QLabel* read_ = nullptr;
    QLabel* ax_ = nullptr;
    QHBoxLayout* history_ = nullptr;
    QPushButton* toggleMute_ = nullptr;
    QPushButton* press_ = nullptr;
    RedrawScheduler redraw_;
};

} // namespace views
} // namespace hg
