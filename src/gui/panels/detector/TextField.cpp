// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/detector/TextField.h"

#include <QFontMetrics>
#include <QStringList>

namespace {

constexpr int Spare = 5;  // pixels

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
    return {metrics.horizontalAdvance(_text) + Spare, metrics.height()};
}

QSize TextField::minimumSizeHint() const
{
    // A minimum as wide as the lines would never let them become shorter.
    return {0, QLabel::minimumSizeHint().height()};
}

void TextField::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    _wrap();
}

void TextField::_wrap()
{
    const QFontMetrics metrics = fontMetrics();
    QStringList lines;
    QString line;
    for (qsizetype i = 0; i < _text.size(); ++i) {
        line += _text[i];
        if (_text[i].isHighSurrogate() && i + 1 < _text.size())
            continue;
        if (metrics.horizontalAdvance(line) >= width() - Spare || i + 1 == _text.size()) {
            lines += line;
            line.clear();
        }
    }
    QLabel::setText(lines.join(QLatin1Char('\n')));
}
