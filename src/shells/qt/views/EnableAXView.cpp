#include "shells/qt/views/EnableAXView.hpp"

#include "shells/qt/views/NamedImages.hpp"
#include "shells/qt/views/ViewStyle.hpp"

#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace hg::views {

EnableAXView::EnableAXView(std::function<void()> promptAction, QWidget* parent)
    : QWidget(parent), promptAction_(std::move(promptAction)) {
    auto* column = new QVBoxLayout(this);

    auto* text =
        makeText(QStringLiteral(
                     "You must grant the Accessibility permission to Hush Gremlin in order for it "
                     "to read and control your meeting app's mute."),
                 this);
    // At most 420 wide: as wide as that when the window allows, so the
    // wrapped lines are measured at that width.
    text->setFixedWidth(420);
    text->setMinimumHeight(70);
    column->addWidget(text, 0, Qt::AlignHCenter);
    auto* note = makeText(QStringLiteral(
                              "On Linux, granting turns on the desktop's accessibility support; "
                              "meeting apps that were already running need a restart before Hush "
                              "Gremlin can see them."),
                          this);
    note->setFixedWidth(420);
    makeCaption(*note);
    makeGrey(*note);
    column->addWidget(note, 0, Qt::AlignHCenter);

    auto* picture = new QLabel(this);
    picture->setAlignment(Qt::AlignCenter);
    picture->setFixedSize(500, 450);
    picture->setPixmap(namedPixmap("AXLinuxPane", 500, 450, devicePixelRatioF()));
    column->addWidget(picture, 0, Qt::AlignHCenter);

    grant_ = new QPushButton(QStringLiteral("Grant Acessibility Permission"), this);
    grant_->setDefault(true);
    column->addWidget(grant_, 0, Qt::AlignHCenter);
    connect(grant_, &QPushButton::clicked, this, [this] {
        if (promptAction_) {
            promptAction_();
        }
    });
    // setDefault alone acts only inside a dialog; this window is not one.
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(QKeySequence(key), this);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, grant_, &QPushButton::click);
    }
}

} // namespace hg::views
