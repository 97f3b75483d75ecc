#pragma once

#include <QProxyStyle>

namespace hg {

// Draws the menu rows whose QAction carries the property `redProperty` with
// their text in red, and every other row as the base style does. Rows of a
// QMenu cannot be coloured one by one through QAction or style sheets; the
// style sees each row's rectangle and finds its action from it. Menus that the
// platform draws itself (the native macOS menu, menus exported over D-Bus to a
// StatusNotifierItem host) ignore styles: there the row shows in plain text.
class MenuRowStyle final : public QProxyStyle {
    Q_OBJECT

public:
    static constexpr const char* redProperty = "hgRed";

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

} // namespace hg
