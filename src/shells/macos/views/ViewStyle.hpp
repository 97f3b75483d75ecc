#pragma once

#include <cstdint>
#include <string_view>

// The few text styles and pieces the window contents share, as the
// platform's named fonts and colours. Every function returns a new AppKit
// object retained once for the caller, who takes it over with
// (__bridge_transfer T*). Main thread only.
namespace hg::mac {

enum class TextFont : std::uint8_t {
    body,        // the system font at the regular size
    headline,    // NSFontTextStyleHeadline
    subheadline, // NSFontTextStyleSubheadline
    caption,     // NSFontTextStyleCaption1
};

enum class TextColour : std::uint8_t {
    label,     // labelColor
    grey,      // systemGrayColor
    secondary, // secondaryLabelColor
};

struct TextStyle {
    TextFont font = TextFont::body;
    TextColour colour = TextColour::label;
    bool bold = false;
    bool italic = false;
    bool centred = false;
    // Above 0: the text wraps onto as many lines as it needs, at most this
    // many points wide. Otherwise it stays on one line.
    double wrapWidth = 0;
};

// The platform's default padding, in points.
inline constexpr double defaultPadding = 16;

// An NSFont for `style` (its font, bold and italic).
[[nodiscard]] void* makeFont(const TextStyle& style);
// An NSColor for `colour`.
[[nodiscard]] void* makeColour(TextColour colour);
// A static, non-selectable NSTextField showing `text` (UTF-8) in `style`.
[[nodiscard]] void* makeLabel(std::string_view text, const TextStyle& style = {});
// A horizontal line between sections (an NSBox separator).
[[nodiscard]] void* makeDivider();
// An NSView of `width` x `height` points holding `column` (an NSView, taken
// with __bridge) centred in its safe area, never above its top edge nor wider
// than it.
[[nodiscard]] void* makeCentredHost(void* column, double width, double height);

} // namespace hg::mac
