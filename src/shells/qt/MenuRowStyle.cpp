#include "shells/qt/MenuRowStyle.hpp"

#include <QAction>
#include <QMenu>
#include <QStyleOptionMenuItem>

namespace hg {

void MenuRowStyle::drawControl(ControlElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    const auto* menu = qobject_cast<const QMenu*>(widget);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuItem || menu == nullptr || item == nullptr) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    const QAction* action = menu->actionAt(item->rect.center());
    if (action == nullptr || !action->property(redProperty).toBool()) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    QStyleOptionMenuItem red(*item);
    const QColor color(Qt::red);
    // The highlighted row keeps the light text of the selection for contrast.
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        red.palette.setColor(QPalette::All, role, color);
    }
    QProxyStyle::drawControl(element, &red, painter, widget);
}

} // namespace hg
