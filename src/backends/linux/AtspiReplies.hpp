#pragma once

#include <QList>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <optional>

namespace hg {

// One (so) reference to an AT-SPI object: its application's bus name and path.
struct AtspiObjectRef {
    QString service;
    QString path;
};

// Readers for the reply arguments of the AT-SPI calls the backend makes. Each
// answers none when the argument is not of the documented D-Bus type, so a
// misbehaving application cannot make the caller misread it.

// GetChildren (a(so)). References to the null object are left out.
[[nodiscard]] std::optional<QList<AtspiObjectRef>> readObjectRefs(const QVariant& argument);
// GetState (au): the state bits, low word first.
[[nodiscard]] std::optional<QList<std::uint32_t>> readStateWords(const QVariant& argument);
// GetActions (a(sss)): how many actions the element offers.
[[nodiscard]] std::optional<int> readActionCount(const QVariant& argument);

// Whether state bit `bit` (an AtspiStateType) is set in the GetState words.
[[nodiscard]] bool hasState(const QList<std::uint32_t>& words, unsigned bit);

} // namespace hg
