#pragma once

#include <QWidget>
#include <functional>

class QPushButton;

namespace hg::views {

// Asks for the accessibility permission: a text, a picture of the settings
// and a button that runs `promptAction`. The button is the default one:
// Return (or Enter) anywhere in the window presses it. A note under the text
// says that granting turns the desktop's accessibility on.
class EnableAXView final : public QWidget {
    Q_OBJECT

public:
    explicit EnableAXView(std::function<void()> promptAction, QWidget* parent = nullptr);

    [[nodiscard]] QPushButton& grantButton() { return *grant_; }

private:
    std::function<void()> promptAction_;
    QPushButton* grant_ = nullptr;
};

} // namespace hg::views
