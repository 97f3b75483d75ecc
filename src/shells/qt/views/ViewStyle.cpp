#include "shells/qt/views/ViewStyle.hpp"

#include <QFrame>

namespace hg::views {

QLabel* makeText(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

void makeHeadline(QLabel& label) {
    QFont font = label.font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() + 1);
    label.setFont(font);
}

void makeSubheadline(QLabel& label) {
    QFont font = label.font();
    font.setBold(true);
    label.setFont(font);
}

void makeCaption(QLabel& label) {
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() - 1.5);
    label.setFont(font);
}

void makeItalic(QLabel& label) {
    QFont font = label.font();
    font.setItalic(true);
    label.setFont(font);
}

void makeGrey(QLabel& label) {
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
    label.setPalette(palette);
}

QFrame* makeDivider(QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

} // namespace hg::views
