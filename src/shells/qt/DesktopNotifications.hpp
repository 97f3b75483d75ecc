#pragma once

#include <QString>

namespace hg {

// Desktop notifications through org.freedesktop.Notifications on the session
// bus. Sent without waiting for the answer, which is ignored, as is a desktop
// without a notification service.
class DesktopNotifications {
public:
    static void notify(const QString& summary, const QString& body);
};

} // namespace hg
