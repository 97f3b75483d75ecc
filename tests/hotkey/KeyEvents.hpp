#pragma once

#include "ports/EventTap.hpp"
#include "ports/LocalKeyMonitor.hpp"
#include "ports/ModifierKeys.hpp"

#include <cstdint>

namespace hg::test {

// macOS virtual key codes used across the hotkey tests.
namespace key {
inline constexpr std::uint16_t a = 0;
inline constexpr std::uint16_t k = 40;
inline constexpr std::uint16_t escape = 53;
inline constexpr std::uint16_t command = 55;
inline constexpr std::uint16_t shift = 56;
inline constexpr std::uint16_t capsLock = 57;
inline constexpr std::uint16_t option = 58;
inline constexpr std::uint16_t control = 59;
inline constexpr std::uint16_t fn = 63;
} // namespace key

inline constexpr std::uint64_t cmd = modifier::command;
inline constexpr std::uint64_t shf = modifier::shift;
inline constexpr std::uint64_t ctl = modifier::control;
inline constexpr std::uint64_t opt = modifier::option;
inline constexpr std::uint64_t fnb = modifier::function;
inline constexpr std::uint64_t capsLockFlag = 0x10000;

inline TapEvent down(std::int64_t code, std::uint64_t flags = 0) {
    return {tapevent::keyDown, code, flags, 0};
}
inline TapEvent up(std::int64_t code, std::uint64_t flags = 0) {
    return {tapevent::keyUp, code, flags, 0};
}
inline TapEvent repeat(std::int64_t code, std::uint64_t flags = 0) {
    return {tapevent::keyDown, code, flags, 1};
}
inline TapEvent flags(std::int64_t code, std::uint64_t after) {
    return {tapevent::flagsChanged, code, after, 0};
}

inline LocalKeyEvent localDown(std::uint16_t code, std::uint64_t modifiers = 0) {
    return {LocalKeyEvent::Type::keyDown, code, modifiers};
}
inline LocalKeyEvent localFlags(std::uint16_t code, std::uint64_t after) {
    return {LocalKeyEvent::Type::flagsChanged, code, after};
}

} // namespace hg::test
