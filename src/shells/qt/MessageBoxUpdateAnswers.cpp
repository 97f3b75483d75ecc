#include "shells/qt/MessageBoxUpdateAnswers.hpp"

#include <QLabel>
#include <QMessageBox>
#include <QString>

namespace hg {

namespace {

QString html(const std::string& text) {
    return QString::fromStdString(text).toHtmlEscaped();
}

// Modal, on the main thread, like the rest of the program's windows. Links
// open in the user's browser.
void show(QMessageBox::Icon icon, const QString& title, const QString& headline,
          const QString& details) {
    QMessageBox box(icon, title, QStringLiteral("<b>%1</b>").arg(headline), QMessageBox::Ok);
    box.setTextFormat(Qt::RichText);
    box.setInformativeText(details);
    for (QLabel* label : box.findChildren<QLabel*>()) {
        label->setOpenExternalLinks(true);
    }
    box.exec();
}

} // namespace

void MessageBoxUpdateAnswers::upToDate(const std::string& currentVersion) {
    show(QMessageBox::Information, QStringLiteral("Software Update"),
         QStringLiteral("You’re up to date!"),
         QStringLiteral("HushGremlin %1 is currently the newest version available.")
             .arg(html(currentVersion)));
}

void MessageBoxUpdateAnswers::updateAvailable(const AppcastItem& release,
                                              const std::string& currentVersion) {
    QString details = QStringLiteral("HushGremlin %1 is now available—you have %2.")
                          .arg(html(release.shortVersion), html(currentVersion));
    if (!release.downloadLink.empty()) {
        details +=
            QStringLiteral("<br><a href=\"%1\">Download</a>").arg(html(release.downloadLink));
    }
    if (!release.releaseNotesLink.empty()) {
        details += QStringLiteral("<br><a href=\"%1\">Release notes</a>")
                       .arg(html(release.releaseNotesLink));
    }
    show(QMessageBox::Information, QStringLiteral("Software Update"),
         QStringLiteral("A new version of HushGremlin is available!"), details);
}

void MessageBoxUpdateAnswers::checkFailed(const std::string& reason) {
    show(QMessageBox::Warning, QStringLiteral("Software Update"), QStringLiteral("Update Error!"),
         html(reason));
}

} // namespace hg
