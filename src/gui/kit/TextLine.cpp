// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A text over a widget, for what is going on there.
#include "gui/kit/TextLine.h"

#include <QEvent>

#include <algorithm>

TextLine::TextLine(QWidget* parent, Qt::Edge edge, std::chrono::milliseconds time)
    : QLabel(parent)
    , _edge(edge)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMargin(4);
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0, 0, 0, 160));
    colours.setColor(QPalette::WindowText, Qt::lightGray);
    setPalette(colours);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    parent->installEventFilter(this);
    _end.setSingleShot(true);
    _end.setInterval(time);
    connect(&_end, &QTimer::timeout, this, &QWidget::hide);
}

void TextLine::say(const QString& message)
{
    _message = message;
    QString text = message;
    setText(text.replace(u'/', QStringLiteral("/\u200b")));  // where long paths may be broken
    _place();
    setVisible(!message.isEmpty());
    raise();
    if (_end.interval() > 0)
        _end.start();
}

bool TextLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        _place();
    return QLabel::eventFilter(watched, event);
}

void TextLine::_place()
{
    const QRect room = parentWidget()->rect();
    const int oneLine = fontMetrics().horizontalAdvance(text()) + 2 * margin() + 1;
    const int width = std::min(oneLine, room.width());
    const int height = std::min(heightForWidth(width), room.height());
    setGeometry(0, _edge == Qt::TopEdge ? 0 : room.height() - height, width, height);
}
