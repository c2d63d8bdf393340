// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/MdiSplitterHandle.h"

#include <QPaintEvent>
#include <QPainter>

void MdiSplitterHandle::paintEvent(QPaintEvent* event)
{
    _painted = event->rect();
    QPainter(this).fillRect(_painted, Qt::black);
    _left = false;
}

void MdiSplitterHandle::leaveEvent(QEvent* event)
{
    QSplitterHandle::leaveEvent(event);
    _left = true;
    update();
}
