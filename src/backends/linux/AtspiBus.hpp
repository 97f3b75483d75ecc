#pragma once

#include "ports/Accessibility.hpp"

#include <QList>
#include <QString>
#include <QVariant>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace hg {

// How long any one call on the buses may take before it counts as failed
// (cannotComplete). A stopped or busy application then costs the caller this
// long, once, instead of hanging the main thread.
inline constexpr std::chrono::milliseconds atspiCallTimeout{1000};

struct AtspiReply {
    AXError error = ax::success; // nonzero: the call failed and `arguments` is empty
    QList<QVariant> arguments;
};

// One method call on the accessibility bus.
struct AtspiRequest {
    QString service;
    QString path;
    QString interface;
    QString method;
    QList<QVariant> arguments{};
};

// The connection to the AT-SPI accessibility bus, and the few calls on the
// session bus that manage it (its address, the desktop's accessibility switch).
//
// The bus's address comes from AT_SPI_BUS_ADDRESS, else from org.a11y.Bus on
// the session bus. The connection is opened on first use and opened again on
// the next call after it was lost; each opening starts a new generation, so
// that elements found on an older connection can be told apart. Blocking
// calls only: no event loop runs while waiting, so nothing re-enters the
// caller. Main thread only.
class AtspiBus {
public:
    explicit AtspiBus(std::chrono::milliseconds timeout = atspiCallTimeout);
    ~AtspiBus();
    AtspiBus(const AtspiBus&) = delete;
    AtspiBus& operator=(const AtspiBus&) = delete;

    // Whether the accessibility bus is reachable; opens the connection when
    // it is not open yet.
    bool connect();

    // A method call on the accessibility bus. Failures, the time-out included,
    // come back as the AXError of AtspiErrors.
    AtspiReply call(const QString& service, const QString& path, const QString& interface,
                    const QString& method, const QList<QVariant>& arguments = {});

    // Sends every request at once and then waits for all the replies, in the
    // requests' order: one round trip, and at most one time-out however many
    // requests a stopped application leaves unanswered.
    std::vector<AtspiReply> callAll(const std::vector<AtspiRequest>& requests);

    // The request for Properties.Get of one property (never GetAll, which
    // crashes Qt 6.4 applications under inspection), and its reply with the
    // value unwrapped.
    static AtspiRequest propertyRequest(const QString& service, const QString& path,
                                        const QString& interface, const QString& name);
    static AtspiReply propertyValue(AtspiReply reply);

    // Properties.Get of one property; the value comes back unwrapped.
    AtspiReply property(const QString& service, const QString& path, const QString& interface,
                        const QString& name);

    // org.a11y.Status.IsEnabled on the session bus; none when it cannot be read.
    std::optional<bool> isEnabled();
    // Sets it; false when that failed. The desktop keeps the value (in
    // GSettings), so whoever sets it in a test must put it back.
    bool setEnabled(bool enabled);

    // Which opening of the connection is current; 0 before the first.
    [[nodiscard]] std::uint64_t generation() const { return generation_; }
    // Waits for replies on either bus since construction (a batch of
    // requests sent together is one), and the messages sent.
    [[nodiscard]] std::uint64_t roundTrips() const { return roundTrips_; }
    [[nodiscard]] std::uint64_t messages() const { return messages_; }
    [[nodiscard]] std::chrono::milliseconds timeout() const { return timeout_; }

private:
    std::optional<QString> busAddress();
    void drop();

    std::chrono::milliseconds timeout_;
    QString connectionName_;
    bool open_ = false;
    std::uint64_t generation_ = 0;
    std::uint64_t roundTrips_ = 0;
    std::uint64_t messages_ = 0;
};

} // namespace hg
