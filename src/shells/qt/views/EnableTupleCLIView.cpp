#include "shells/qt/views/EnableTupleCLIView.hpp"

#include "shells/qt/views/ViewStyle.hpp"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace hg::views {

EnableTupleCLIView::EnableTupleCLIView(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setSpacing(12);

    auto* title =
        makeText(QStringLiteral("Tuple is running but its CLI tool is not installed."), this);
    makeHeadline(*title);
    column->addWidget(title);

    auto* why = makeText(
        QStringLiteral(
            "Hush Gremlin uses the Tuple CLI to detect and control your call's mute state."),
        this);
    why->setFixedWidth(400);
    column->addWidget(why, 0, Qt::AlignHCenter);

    auto* box = new QFrame(this);
    box->setObjectName(QStringLiteral("steps"));
    box->setMaximumWidth(300);
    // The control background of the palette, in a rounded box.
    box->setStyleSheet(
        QStringLiteral("QFrame#steps { background-color: palette(base); border-radius: 8px; }"));
    auto* steps = new QVBoxLayout(box);
    steps->setSpacing(8);
    auto* how = new QLabel(QStringLiteral("To install it:"), box);
    makeSubheadline(*how);
    steps->addWidget(how);
    for (const auto* step : {"1. Open Tuple", "2. Click the Tuple menu in the menu bar",
                             "3. Select \"Install CLI Tool...\""}) {
        auto* line = new QLabel(QString::fromUtf8(step), box);
        line->setTextFormat(Qt::PlainText);
        steps->addWidget(line);
    }
    column->addWidget(box, 0, Qt::AlignHCenter);

    auto* after = makeText(
        QStringLiteral("Once installed, Hush Gremlin will detect it automatically."), this);
    makeCaption(*after);
    makeGrey(*after);
    column->addWidget(after);
}

} // namespace hg::views
