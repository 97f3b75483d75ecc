#include "shells/macos/views/ViewStyle.hpp"

#import <AppKit/AppKit.h>

namespace hg::mac {

namespace {

NSFont* baseFont(TextFont font) {
    switch (font) {
    case TextFont::body:
        return [NSFont systemFontOfSize:NSFont.systemFontSize];
    case TextFont::headline:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleHeadline options:@{}];
    case TextFont::subheadline:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleSubheadline options:@{}];
    case TextFont::caption:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleCaption1 options:@{}];
    }
    return [NSFont systemFontOfSize:NSFont.systemFontSize];
}

NSColor* colourFor(TextColour colour) {
    switch (colour) {
    case TextColour::label:
        return NSColor.labelColor;
    case TextColour::grey:
        return NSColor.systemGrayColor;
    case TextColour::secondary:
        return NSColor.secondaryLabelColor;
    }
    return NSColor.labelColor;
}

NSFont* fontFor(const TextStyle& style) {
    NSFont* font = baseFont(style.font);
    NSFontDescriptorSymbolicTraits traits = font.fontDescriptor.symbolicTraits;
    if (style.bold) {
        traits |= NSFontDescriptorTraitBold;
    }
    if (style.italic) {
        traits |= NSFontDescriptorTraitItalic;
    }
    if (traits == font.fontDescriptor.symbolicTraits) {
        return font;
    }
    NSFontDescriptor* descriptor = [font.fontDescriptor fontDescriptorWithSymbolicTraits:traits];
    // A family without the wanted face keeps the plain one.
    NSFont* styled = [NSFont fontWithDescriptor:descriptor size:font.pointSize];
    return styled != nil ? styled : font;
}

} // namespace

void* makeFont(const TextStyle& style) {
    return (__bridge_retained void*)fontFor(style);
}

void* makeColour(TextColour colour) {
    return (__bridge_retained void*)colourFor(colour);
}

void* makeLabel(std::string_view text, const TextStyle& style) {
    NSString* string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    if (string == nil) {
        string = @"";
    }
    NSTextField* label = style.wrapWidth > 0 ? [NSTextField wrappingLabelWithString:string]
                                             : [NSTextField labelWithString:string];
    label.font = fontFor(style);
    label.textColor = colourFor(style.colour);
    label.selectable = NO;
    if (style.centred) {
        label.alignment = NSTextAlignmentCenter;
    }
    if (style.wrapWidth > 0) {
        label.preferredMaxLayoutWidth = style.wrapWidth;
        [label.widthAnchor constraintLessThanOrEqualToConstant:style.wrapWidth].active = YES;
    }
    return (__bridge_retained void*)label;
}

void* makeDivider() {
    NSBox* divider = [[NSBox alloc] initWithFrame:NSZeroRect];
    divider.boxType = NSBoxSeparator;
    return (__bridge_retained void*)divider;
}

void* makeCentredHost(void* column, double width, double height) {
    NSView* content = (__bridge NSView*)column;
    content.translatesAutoresizingMaskIntoConstraints = NO;
    NSView* view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, height)];
    [view addSubview:content];
    NSLayoutGuide* safeArea = view.safeAreaLayoutGuide;
    [NSLayoutConstraint activateConstraints:@[
        [content.centerXAnchor constraintEqualToAnchor:safeArea.centerXAnchor],
        [content.centerYAnchor constraintEqualToAnchor:safeArea.centerYAnchor],
        [content.topAnchor constraintGreaterThanOrEqualToAnchor:safeArea.topAnchor],
        [content.leadingAnchor constraintGreaterThanOrEqualToAnchor:safeArea.leadingAnchor],
        [content.widthAnchor constraintLessThanOrEqualToAnchor:safeArea.widthAnchor],
    ]];
    return (__bridge_retained void*)view;
}

} // namespace hg::mac
