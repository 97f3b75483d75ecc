#include "shells/qt/QtKeyCodes.hpp"

#include "ports/ModifierKeys.hpp"

#include <array>
#include <utility>

namespace hg::qtkeys {

namespace {

// Keys of the main block, US layout; shifted symbols sit on their base key.
constexpr auto mainKeys = std::to_array<std::pair<int, std::uint16_t>>({
    {Qt::Key_A, 0x00},           {Qt::Key_S, 0x01},          {Qt::Key_D, 0x02},
    {Qt::Key_F, 0x03},           {Qt::Key_H, 0x04},          {Qt::Key_G, 0x05},
    {Qt::Key_Z, 0x06},           {Qt::Key_X, 0x07},          {Qt::Key_C, 0x08},
    {Qt::Key_V, 0x09},           {Qt::Key_B, 0x0B},          {Qt::Key_Q, 0x0C},
    {Qt::Key_W, 0x0D},           {Qt::Key_E, 0x0E},          {Qt::Key_R, 0x0F},
    {Qt::Key_Y, 0x10},           {Qt::Key_T, 0x11},          {Qt::Key_1, 0x12},
    {Qt::Key_Exclam, 0x12},      {Qt::Key_2, 0x13},          {Qt::Key_At, 0x13},
    {Qt::Key_3, 0x14},           {Qt::Key_NumberSign, 0x14}, {Qt::Key_4, 0x15},
    {Qt::Key_Dollar, 0x15},      {Qt::Key_6, 0x16},          {Qt::Key_AsciiCircum, 0x16},
    {Qt::Key_5, 0x17},           {Qt::Key_Percent, 0x17},    {Qt::Key_Equal, 0x18},
    {Qt::Key_Plus, 0x18},        {Qt::Key_9, 0x19},          {Qt::Key_ParenLeft, 0x19},
    {Qt::Key_7, 0x1A},           {Qt::Key_Ampersand, 0x1A},  {Qt::Key_Minus, 0x1B},
    {Qt::Key_Underscore, 0x1B},  {Qt::Key_8, 0x1C},          {Qt::Key_Asterisk, 0x1C},
    {Qt::Key_0, 0x1D},           {Qt::Key_ParenRight, 0x1D}, {Qt::Key_BracketRight, 0x1E},
    {Qt::Key_BraceRight, 0x1E},  {Qt::Key_O, 0x1F},          {Qt::Key_U, 0x20},
    {Qt::Key_BracketLeft, 0x21}, {Qt::Key_BraceLeft, 0x21},  {Qt::Key_I, 0x22},
    {Qt::Key_P, 0x23},           {Qt::Key_Return, 0x24},     {Qt::Key_L, 0x25},
    {Qt::Key_J, 0x26},           {Qt::Key_Apostrophe, 0x27}, {Qt::Key_QuoteDbl, 0x27},
    {Qt::Key_K, 0x28},           {Qt::Key_Semicolon, 0x29},  {Qt::Key_Colon, 0x29},
    {Qt::Key_Backslash, 0x2A},   {Qt::Key_Bar, 0x2A},        {Qt::Key_Comma, 0x2B},
    {Qt::Key_Less, 0x2B},        {Qt::Key_Slash, 0x2C},      {Qt::Key_Question, 0x2C},
    {Qt::Key_N, 0x2D},           {Qt::Key_M, 0x2E},          {Qt::Key_Period, 0x2F},
    {Qt::Key_Greater, 0x2F},     {Qt::Key_Tab, 0x30},        {Qt::Key_Backtab, 0x30},
    {Qt::Key_Space, 0x31},       {Qt::Key_QuoteLeft, 0x32},  {Qt::Key_AsciiTilde, 0x32},
    {Qt::Key_Backspace, 0x33},   {Qt::Key_Enter, 0x4C},      {Qt::Key_Escape, 0x35},
    {Qt::Key_Super_L, 0x37},     {Qt::Key_Super_R, 0x36},    {Qt::Key_Shift, 0x38},
    {Qt::Key_CapsLock, 0x39},    {Qt::Key_Alt, 0x3A},        {Qt::Key_AltGr, 0x3D},
    {Qt::Key_Help, 0x72},        {Qt::Key_Home, 0x73},       {Qt::Key_PageUp, 0x74},
    {Qt::Key_Delete, 0x75},      {Qt::Key_End, 0x77},        {Qt::Key_PageDown, 0x79},
    {Qt::Key_Left, 0x7B},        {Qt::Key_Right, 0x7C},      {Qt::Key_Down, 0x7D},
    {Qt::Key_Up, 0x7E},          {Qt::Key_VolumeUp, 0x48},   {Qt::Key_VolumeDown, 0x49},
    {Qt::Key_VolumeMute, 0x4A},  {Qt::Key_Insert, 0x72},     {Qt::Key_Clear, 0x47},
    {Qt::Key_NumLock, 0x47},
});

constexpr std::array<std::uint16_t, 20> functionKeys{
    0x7A, 0x78, 0x63, 0x76, 0x60, 0x61, 0x62, 0x64, 0x65, 0x6D, // F1-F10
    0x67, 0x6F, 0x69, 0x6B, 0x71, 0x6A, 0x40, 0x4F, 0x50, 0x5A, // F11-F20
};

constexpr std::array<std::uint16_t, 10> keypadDigits{0x52, 0x53, 0x54, 0x55, 0x56,
                                                     0x57, 0x58, 0x59, 0x5B, 0x5C};

std::optional<std::uint16_t> keypadKey(int key) {
    if (key >= Qt::Key_0 && key <= Qt::Key_9) {
        return keypadDigits[static_cast<std::size_t>(key - Qt::Key_0)];
    }
    switch (key) {
    case Qt::Key_Period:
    case Qt::Key_Comma:
        return 0x41;
    case Qt::Key_Asterisk:
        return 0x43;
    case Qt::Key_Plus:
        return 0x45;
    case Qt::Key_Slash:
        return 0x4B;
    case Qt::Key_Enter:
        return 0x4C;
    case Qt::Key_Minus:
        return 0x4E;
    case Qt::Key_Equal:
        return 0x51;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<std::uint16_t> macKeyCode(int key, bool keypad) {
    if (key == Qt::Key_Control) {
        return std::uint16_t{0x3B};
    }
    if (key == Qt::Key_Meta) {
        return std::uint16_t{0x37};
    }
    if (keypad) {
        if (const auto code = keypadKey(key)) {
            return code;
        }
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F20) {
        return functionKeys[static_cast<std::size_t>(key - Qt::Key_F1)];
    }
    for (const auto& [qtKey, mac] : mainKeys) {
        if (qtKey == key) {
            return mac;
        }
    }
    return std::nullopt;
}

std::uint64_t macModifierFlags(Qt::KeyboardModifiers modifiers) {
    std::uint64_t flags = 0;
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        flags |= modifier::shift;
    }
    if (modifiers.testFlag(Qt::AltModifier)) {
        flags |= modifier::option;
    }
    if (modifiers.testFlag(Qt::ControlModifier)) {
        flags |= modifier::control;
    }
    if (modifiers.testFlag(Qt::MetaModifier)) {
        flags |= modifier::command;
    }
    return flags;
}

std::uint64_t modifierBit(int key) {
    switch (key) {
    case Qt::Key_Shift:
        return modifier::shift;
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
        return modifier::option;
    case Qt::Key_Control:
        return modifier::control;
    case Qt::Key_Meta:
        return modifier::command;
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return modifier::command;
    default:
        return 0;
    }
}

} // namespace hg::qtkeys
