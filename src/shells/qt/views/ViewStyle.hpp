#pragma once

#include <QLabel>
#include <QString>

class QFrame;

namespace hg::views {

// The few text styles the views share, as the nearest Qt equivalents of the
// platform's named fonts and colours.

// A centred, wrapping label.
[[nodiscard]] QLabel* makeText(const QString& text, QWidget* parent = nullptr);
// Bold, one step up: the headline font.
void makeHeadline(QLabel& label);
// Bold at the normal size: the sub-headline font.
void makeSubheadline(QLabel& label);
// One step down: the caption font.
void makeCaption(QLabel& label);
// Italic.
void makeItalic(QLabel& label);
// The palette's placeholder grey: secondary text.
void makeGrey(QLabel& label);
// A horizontal line between sections.
[[nodiscard]] QFrame* makeDivider(QWidget* parent = nullptr);

} // namespace hg::views
