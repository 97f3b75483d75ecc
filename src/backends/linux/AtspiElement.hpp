#pragma once

#include "ports/Accessibility.hpp"

#include <QString>
#include <cstdint>

namespace hg {

// An AT-SPI object: the bus name of its application and its object path,
// valid on one opening (generation) of the accessibility bus. An element that
// stands for no object (the application of a process that has none, or one
// asked for while the bus was unreachable) carries the code that every read
// and action on it fails with.
class AtspiElement final : public AXElement {
public:
    AtspiElement(QString service, QString path, std::uint64_t generation)
        : service_(std::move(service)), path_(std::move(path)), generation_(generation) {}

    static AXElementRef dead(AXError failure) {
        auto element = std::make_shared<AtspiElement>(QString(), QString(), 0);
        element->failure_ = failure;
        return element;
    }

    [[nodiscard]] const QString& service() const { return service_; }
    [[nodiscard]] const QString& path() const { return path_; }
    [[nodiscard]] std::uint64_t generation() const { return generation_; }
    // Nonzero for an element that stands for no object.
    [[nodiscard]] AXError failure() const { return failure_; }

private:
    QString service_;
    QString path_;
    std::uint64_t generation_;
    AXError failure_ = ax::success;
};

} // namespace hg
