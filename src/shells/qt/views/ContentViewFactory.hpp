#pragma once

#include "ports/Windows.hpp"

class QWidget;

namespace hg::views {

// The widget that shows a window's content: the preferences, the debug view,
// a setup guide or the About view. The objects the content refers to must
// outlive the widget.
[[nodiscard]] QWidget* makeContentView(const WindowContent& content, QWidget* parent = nullptr);

} // namespace hg::views
