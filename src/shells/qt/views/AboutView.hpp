#pragma once

#include <QWidget>

namespace hg::views {

// Who made the program and what it is built on: the application icon, the
// version, credits, contact links, the two outside components, a copyright
// line. Links open in the desktop's browser or mail program.
class AboutView final : public QWidget {
    Q_OBJECT

public:
    explicit AboutView(const QString& version, QWidget* parent = nullptr);
};

} // namespace hg::views
