// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/TextField.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int Spare = 5;           // pixels
constexpr int NarrowestLine = 80;  // a field without a place yet would break after each letter

}  // namespace

TextField::TextField(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(false);
}

void TextField::setText(const QString& text)
{
    _text = text;
    _wrap();
    updateGeometry();
}

QSize TextField::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const QMargins margins = contentsMargins();
    return {metrics.horizontalAdvance(_text) + Spare + margins.left() + margins.right(),
            metrics.height()};
}

QSize TextField::minimumSizeHint() const
{
    // A minimum as wide as the lines would never let them become shorter.
    return {0, QLabel::minimumSizeHint().height()};
}

void TextField::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextDontClip,
                            text());
}

void TextField::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    _wrap();
}

void TextField::_wrap()
{
    const QFontMetrics metrics = fontMetrics();
    const int most = std::max(contentsRect().width(), NarrowestLine) - Spare;
    QStringList lines;
    QString line;
    for (qsizetype i = 0; i < _text.size(); ++i) {
        line += _text[i];
        if (_text[i].isHighSurrogate() && i + 1 < _text.size())
            continue;
        if (metrics.horizontalAdvance(line) >= most || i + 1 == _text.size()) {
            lines += line;
            line.clear();
        }
    }
    QLabel::setText(lines.join(QLatin1Char('\n')));
}
