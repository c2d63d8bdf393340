// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/InfoField.h"

namespace {

/// A place to break after every so many characters of a word, which always fit into a line.
QString breakable(const QString& text)
{
    constexpr int longestWord = 30;
    constexpr QChar zeroWidthSpace(0x200b);
    QString result;
    int word = 0;
    for (const QChar letter : text) {
        word = letter.isSpace() ? 0 : word + 1;
        if (word > longestWord && !letter.isLowSurrogate()) {
            result += zeroWidthSpace;
            word = 1;
        }
        result += letter;
    }
    return result;
}

}  // namespace

InfoField::InfoField(QWidget* parent)
    : QLabel(parent)
{
    setStyleSheet(QStringLiteral("QLabel {border: 1px solid black;}"));
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setMargin(4);
    hide();
}

void InfoField::report(const QString& plain)
{
    // A text of the detector is no markup, whatever it looks like.
    setTextFormat(Qt::PlainText);
    setText(breakable(plain));
    setVisible(!plain.isEmpty());
}

void InfoField::reportError(const QString& plain)
{
    if (plain.isEmpty())
        return clearReport();
    setTextFormat(Qt::RichText);
    setText(QStringLiteral("<i>") + breakable(plain).toHtmlEscaped() + QStringLiteral("</i>"));
    show();
}

void InfoField::clearReport() { report({}); }
