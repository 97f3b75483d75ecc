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
    bool operator==(const AtspiObjectRef&) const = default;
};

// Readers for the reply arguments of the AT-SPI calls the backend makes. Each
// answers none when the argument is not of the documented D-Bus type, so a
// misbehaving application cannot make the caller misread it.

// GetChildren (a(so)). References to the null object are left out.
[[nodiscard]] std::optional<QList<AtspiObjectRef>> readObjectRefs(const QVariant& argument);
// GetState (au): the state bits, low word first.
[[nodiscard]] std::optional<QList<std::uint32_t>> readStateWords(const QVariant& argument);
// Component.GetExtents ((iiii)): whether the element has an area (a width
// and a height above zero).
[[nodiscard]] std::optional<bool> readHasArea(const QVariant& argument);
// GetActions (a(sss)): how many actions the element offers.
[[nodiscard]] std::optional<int> readActionCount(const QVariant& argument);

// AtspiStateType bits the backend reads.
namespace atspiState {
inline constexpr unsigned enabled = 8;
inline constexpr unsigned sensitive = 24;
// On screen: visible, and so are all its ancestors.
inline constexpr unsigned showing = 25;
// Meant to be seen. Qt clears it for every item of a menu that is not open,
// GTK only for hidden items.
inline constexpr unsigned visible = 30;
} // namespace atspiState

// Whether state bit `bit` (an AtspiStateType) is set in the GetState words.
[[nodiscard]] bool hasState(const QList<std::uint32_t>& words, unsigned bit);

// Whether an element is kept out of sight: not visible and known to have no
// area. Qt keeps the menu items it hides in the tree that way (with no other
// state either); the items of a closed menu are not visible but have an area.
[[nodiscard]] bool isOutOfSight(const QList<std::uint32_t>& words, std::optional<bool> hasArea);

} // namespace hg
