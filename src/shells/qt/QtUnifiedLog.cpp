#include "shells/qt/QtUnifiedLog.hpp"

#include <QLoggingCategory>

namespace hg {

namespace {
Q_LOGGING_CATEGORY(launchAtLoginLog, "app.hushgremlin.launchatlogin")
} // namespace

void QtUnifiedLog::error(const std::string& message) {
    qCCritical(launchAtLoginLog).noquote() << QString::fromStdString(message);
}

} // namespace hg
