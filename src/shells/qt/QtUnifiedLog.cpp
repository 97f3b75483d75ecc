#include "shells/qt/QtUnifiedLog.hpp"

#include <QLoggingCategory>

namespace hg {

namespace {
Q_LOGGING_CATEGORY(launchAtLoginLog, "app.hushgremlin.launchatlogin")
} // namespace

void QtUnifiedLog::error(std::string_view format, const std::vector<std::string>& arguments) {
    qCCritical(launchAtLoginLog).noquote() << QString::fromStdString(formatted(format, arguments));
}

} // namespace hg
