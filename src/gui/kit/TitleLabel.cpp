// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/TitleLabel.h"

#include "gui/kit/TitleBar.h"
#include "gui/kit/ToolTipText.h"

#include <QEvent>
#include <QFontMetrics>

TitleLabel::TitleLabel(QWidget* parent)
    : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
}

void TitleLabel::setFullText(const QString& text)
{
    _fullText = text;
    _fullText.replace('\n', ' ');  // there is one line
    setToolTip(toolTipText(text));
    _elide();
}

QSize TitleLabel::sizeHint() const { return {0, TitleBar::FixedHeight}; }

QSize TitleLabel::minimumSizeHint() const { return sizeHint(); }

void TitleLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    _elide();
}

void TitleLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    // The font comes from a style sheet that is set later than the first title.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        _elide();
}

void TitleLabel::_elide()
{
    const QFontMetrics metrics(font());
    _fullWidth = metrics.horizontalAdvance(_fullText);
    const int room = contentsRect().width();
    setText(room < _fullWidth ? metrics.elidedText(_fullText, Qt::ElideLeft, room) : _fullText);
}
