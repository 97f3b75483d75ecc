#include "shells/qt/views/AboutView.hpp"

#include "shells/qt/views/NamedImages.hpp"
#include "shells/qt/views/ViewStyle.hpp"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace hg::views {

namespace {

// The contact details are settings of the build (HG_ABOUT_* in CMake), so a
// distributor can put their own.
constexpr const char* contactHandle = HG_ABOUT_HANDLE;
constexpr const char* contactProfile = HG_ABOUT_PROFILE_URL;
constexpr const char* contactEmail = HG_ABOUT_EMAIL;
constexpr const char* sparkleHome = "https://sparkle-project.org";
constexpr const char* launchAtLoginHome = "https://github.com/sindresorhus/LaunchAtLogin";

QLabel* link(const QString& label, const QString& target, QWidget* parent) {
    auto* text = new QLabel(parent);
    text->setTextFormat(Qt::RichText);
    text->setText(
        QStringLiteral("<a href=\"%1\">%2</a>").arg(target.toHtmlEscaped(), label.toHtmlEscaped()));
    text->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    text->setOpenExternalLinks(false);
    QObject::connect(text, &QLabel::linkActivated, text,
                     [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); });
    return text;
}

QLabel* plain(const QString& text, QWidget* parent, bool greyItalic) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    if (greyItalic) {
        makeGrey(*label);
        makeItalic(*label);
    }
    return label;
}

QHBoxLayout* row() {
    auto* layout = new QHBoxLayout;
    layout->setSpacing(0);
    layout->addStretch();
    return layout;
}

} // namespace

AboutView::AboutView(const QString& version, QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    // Narrow side margins: the contact row must fit the window's 300 points.
    column->setContentsMargins(4, 9, 4, 9);
    column->addStretch();

    auto* icon = new QLabel(this);
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(namedPixmap("AppIcon", 128, 128, devicePixelRatioF()));
    column->addWidget(icon);
    auto* versionText = plain(QStringLiteral("v%1").arg(version), this, true);
    makeCaption(*versionText);
    versionText->setAlignment(Qt::AlignCenter);
    column->addWidget(versionText);

    auto* credits = makeText(
        QStringLiteral("Hush Gremlin was designed and programmed by the HushGremlin developers, "
                       "at home in many cities."),
        this);
    credits->setFixedHeight(40);
    credits->setContentsMargins(8, 0, 8, 0);
    column->addWidget(credits);

    auto* rsvp = row();
    rsvp->addWidget(plain(QStringLiteral("RSVP: "), this, false));
    rsvp->addWidget(
        link(QString::fromUtf8(contactHandle), QString::fromUtf8(contactProfile), this));
    rsvp->addWidget(plain(QStringLiteral(" or "), this, false));
    rsvp->addWidget(link(QString::fromUtf8(contactEmail),
                         QStringLiteral("mailto:") + QString::fromUtf8(contactEmail), this));
    rsvp->addStretch();
    column->addLayout(rsvp);

    auto* uses = row();
    uses->addWidget(plain(QStringLiteral("It uses "), this, true));
    auto* sparkle = link(QStringLiteral("Sparkle"), QString::fromUtf8(sparkleHome), this);
    makeItalic(*sparkle);
    uses->addWidget(sparkle);
    uses->addWidget(plain(QStringLiteral(" and "), this, true));
    auto* launchAtLogin =
        link(QStringLiteral("LaunchAtLogin"), QString::fromUtf8(launchAtLoginHome), this);
    makeItalic(*launchAtLogin);
    uses->addWidget(launchAtLogin);
    uses->addWidget(plain(QStringLiteral("."), this, true));
    uses->addStretch();
    column->addLayout(uses);

    auto* copyright = makeText(QStringLiteral("Copyright \u00A9 the HushGremlin developers"), this);
    makeGrey(*copyright);
    makeItalic(*copyright);
    column->addWidget(copyright);
    auto* sweet = plain(QStringLiteral("Be sweet."), this, true);
    sweet->setAlignment(Qt::AlignCenter);
    column->addWidget(sweet);
    column->addSpacing(10);
    column->addStretch();
}

} // namespace hg::views
