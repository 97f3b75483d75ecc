#pragma once

#include <cstdint>
#include <string_view>

namespace hg {

// AT-SPI role numbers (AtspiRole) that the backend looks for.
namespace atspiRole {
inline constexpr std::uint32_t checkMenuItem = 8;
inline constexpr std::uint32_t frame = 23;
inline constexpr std::uint32_t menu = 33;
inline constexpr std::uint32_t menuBar = 34;
inline constexpr std::uint32_t menuItem = 35;
inline constexpr std::uint32_t popupMenu = 41;
inline constexpr std::uint32_t radioMenuItem = 45;
inline constexpr std::uint32_t separator = 50;
inline constexpr std::uint32_t tearoffMenuItem = 59;
inline constexpr std::uint32_t application = 75;
} // namespace atspiRole

// The "AXRole" value for an AT-SPI role: menus and popup menus are both
// "AXMenu" (that is what a menu search descends into); every other role is
// named after its AtspiRole name ("AXMenuBar", "AXMenuItem", "AXFrame",
// "AXPushButton"). Numbers past the known list give "AXUnknown".
[[nodiscard]] std::string_view axRoleName(std::uint32_t atspiRole);

} // namespace hg
