// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Position and duration of a notice.
#include "gui/kit/NoticeLine.h"

#include <QEvent>

#include <algorithm>

NoticeLine::NoticeLine(QWidget* parent, std::chrono::milliseconds time)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMargin(4);
    setAutoFillBackground(true);
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    parent->installEventFilter(this);
    _end.setSingleShot(true);
    _end.setInterval(time);
    connect(&_end, &QTimer::timeout, this, &QWidget::hide);
}

void NoticeLine::say(const QString& message)
{
    _message = message;
    QString text = message;
    setText(text.replace(u'/', QStringLiteral("/\u200b")));  // where long paths may be broken
    _place();
    show();
    raise();
    _end.start();
}

bool NoticeLine::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        _place();
    return QLabel::eventFilter(watched, event);
}

void NoticeLine::_place()
{
    const QRect area = parentWidget()->rect();
    const int height = std::min(heightForWidth(area.width()), area.height());
    setGeometry(0, 0, area.width(), height);
}
