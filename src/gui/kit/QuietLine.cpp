// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/QuietLine.h"

#include <QEvent>
#include <QFontMetrics>

namespace {

constexpr int edge = 4;  // pixels

}  // namespace

QuietLine::QuietLine(QWidget* parent)
    : QLabel(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
    setContentsMargins(edge, edge, edge, edge);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0, 0, 0, 160));
    colours.setColor(QPalette::WindowText, Qt::lightGray);
    setPalette(colours);
    hide();
    parent->installEventFilter(this);
}

void QuietLine::say(const QString& text)
{
    _text = text;
    setVisible(!text.isEmpty());
    _place();
}

bool QuietLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        _place();
    return QLabel::eventFilter(watched, event);
}

void QuietLine::_place()
{
    if (_text.isEmpty())
        return;
    const QSize room = parentWidget()->size();
    setText(fontMetrics().elidedText(_text, Qt::ElideMiddle, room.width() - 2 * edge));
    const QSize wanted = sizeHint().boundedTo(room);
    setGeometry(0, room.height() - wanted.height(), wanted.width(), wanted.height());
    raise();
}
