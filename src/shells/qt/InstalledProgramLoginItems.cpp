#include "shells/qt/InstalledProgramLoginItems.hpp"

#include <QCoreApplication>
#include <QFileInfo>

namespace hg {

InstalledProgramLoginItems::InstalledProgramLoginItems(LineSink& out)
    : out_(out), entry_(HG_INSTALLED_PROGRAM) {}

LoginItems::Status InstalledProgramLoginItems::status() const {
    return entry_.status();
}

std::optional<std::string> InstalledProgramLoginItems::registerItem() {
    auto error = entry_.registerItem();
    const QString self = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
    const QString installed = QFileInfo(QStringLiteral(HG_INSTALLED_PROGRAM)).canonicalFilePath();
    if (!error && self != installed) {
        out_.line("Start at login runs " HG_INSTALLED_PROGRAM
                  ", not this copy from a build tree: it starts once the package is installed");
    }
    return error;
}

std::optional<std::string> InstalledProgramLoginItems::unregisterItem() {
    return entry_.unregisterItem();
}

} // namespace hg
