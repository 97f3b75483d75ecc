#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace hg {

// Remembers the desktop's accessibility switch (org.a11y.Status.IsEnabled)
// between readings, kept current by the launcher's PropertiesChanged signal,
// so that asking for it once a second costs no round trip. What it
// remembers is forgotten when the launcher goes away or changes owner, and
// until `start` has subscribed nothing is remembered at all.
//
// The signal arrives through the event loop of the thread that started the
// watch: without one running, the value would go stale, so a caller that
// runs no event loop has no use for this.
class AtspiSwitchWatch : public QObject {
    Q_OBJECT

public:
    // Subscribes on the session bus; true once subscribed (then at once).
    // Subscribe before reading the value the first time, so that no change
    // falls between the reading and the subscription.
    bool start();

    // The value last read or signalled, if any.
    [[nodiscard]] std::optional<bool> known() const { return known_; }
    // A value just read (or set) on the bus, remembered while subscribed.
    void remember(std::optional<bool> enabled);

private slots:
    void propertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);

private:
    bool subscribed_ = false;
    std::optional<bool> known_;
};

} // namespace hg
