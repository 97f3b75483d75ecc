#pragma once

#include <QWidget>

namespace hg::views {

// How to install Tuple's command-line tool: static texts and a box of steps.
class EnableTupleCLIView final : public QWidget {
    Q_OBJECT

public:
    explicit EnableTupleCLIView(QWidget* parent = nullptr);
};

} // namespace hg::views
