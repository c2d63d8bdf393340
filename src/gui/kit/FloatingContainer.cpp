// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/FloatingContainer.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>

FloatingContainer::FloatingContainer(QWidget* child, QWidget* parent)
    : QWidget(parent)
    , _child(child)
{
    setAttribute(Qt::WA_DeleteOnClose, false);
    child->setParent(this);
    child->show();
}

void FloatingContainer::becomeWindow(QPoint pos)
{
    _offset = {};
    _torn = QApplication::mouseButtons() & Qt::LeftButton;
    setParent(nullptr);
    qApp->installEventFilter(this);  // as long as it is a window: every event comes here
    setAutoFillBackground(true);
    move(pos);
    show();
}

QSize FloatingContainer::sizeHint() const
{
    return _child ? _child->sizeHint() : QWidget::sizeHint();
}

QSize FloatingContainer::minimumSizeHint() const
{
    return _child ? _child->minimumSizeHint() : QWidget::minimumSizeHint();
}

bool FloatingContainer::event(QEvent* event)
{
    if (event->type() == QEvent::ParentChange && !isWindow())
        qApp->removeEventFilter(this);
    // The child wants another size.
    if (event->type() == QEvent::LayoutRequest) {
        if (isWindow())
            resize(size().expandedTo(minimumSizeHint()));
        else
            updateGeometry();
    }
    return QWidget::event(event);
}

bool FloatingContainer::eventFilter(QObject* watched, QEvent* event)
{
    // Those to this widget itself arrive anyway; all others are only watched.
    const bool counts = watched->isWidgetType() ? watched != this : _torn;
    if (!counts || window() != this)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress)
        mousePressEvent(static_cast<QMouseEvent*>(event));
    else if (event->type() == QEvent::MouseButtonRelease)
        mouseReleaseEvent(static_cast<QMouseEvent*>(event));
    else if (event->type() == QEvent::MouseMove)
        mouseMoveEvent(static_cast<QMouseEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

void FloatingContainer::mousePressEvent(QMouseEvent* event)
{
    if (window() != this)
        event->ignore();  // at home it is the panel's
    else if (event->button() == Qt::LeftButton)
        _offset = event->globalPosition().toPoint() - pos();
}

void FloatingContainer::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint global = event->globalPosition().toPoint();
    if (window() != this)
        event->ignore();
    else if (event->buttons() & Qt::LeftButton && (_torn || frameGeometry().contains(global)))
        move(global - _offset);
}

void FloatingContainer::mouseReleaseEvent(QMouseEvent* event)
{
    _torn = false;
    if (window() != this)
        event->ignore();
    else if (frameGeometry().contains(event->globalPosition().toPoint()))
        emit dropped();
}

void FloatingContainer::closeEvent(QCloseEvent* event)
{
    event->ignore();
    emit closed();
}

void FloatingContainer::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (_child)
        _child->resize(size());
}
