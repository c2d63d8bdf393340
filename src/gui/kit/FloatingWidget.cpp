// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/FloatingWidget.h"

#include "gui/kit/FloatingContainer.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScreen>

#include <algorithm>

namespace {

constexpr int LeastDropHeight = 30;

}  // namespace

FloatingWidget::FloatingWidget(QWidget* child, const QString& title, const QColor& background,
                               QWidget* parent)
    : QWidget(parent)
    , _child(child)
    , _container(new FloatingContainer(child, this))
{
    setAttribute(Qt::WA_MouseTracking);
    setAutoFillBackground(false);
    QPalette colours = _container->palette();
    colours.setColor(QPalette::Window, background);
    _container->setPalette(colours);
    _container->setWindowTitle(title);
    connect(_container, &FloatingContainer::closed, this, &FloatingWidget::catchChild);
    connect(_container, &FloatingContainer::dropped, this, &FloatingWidget::_catchDropped);
    catchChild();
}

FloatingWidget::~FloatingWidget()
{
    if (!_catched)
        delete _container;  // a window has no parent that would do it
}

QSize FloatingWidget::sizeHint() const
{
    return _catched && _child ? _child->sizeHint() : QWidget::sizeHint();
}

QSize FloatingWidget::minimumSizeHint() const
{
    return _catched && _child ? _child->minimumSizeHint() : QWidget::minimumSizeHint();
}

void FloatingWidget::releaseChild(QPoint pos)
{
    if (!_catched || !_container)
        return;
    _catched = false;
    _container->becomeWindow(pos.isNull() ? _cornerOfWindow() : pos);
    updateGeometry();
    emit released(true);
}

void FloatingWidget::releaseChild(bool enabled, QPoint pos)
{
    if (enabled)
        releaseChild(pos);
    else
        catchChild();
}

void FloatingWidget::catchChild()
{
    if (_catched || !_container)
        return;
    _catched = true;
    _container->setParent(this);
    _container->setGeometry(rect());
    _container->setAutoFillBackground(false);
    _container->show();
    updateGeometry();
    emit released(false);
}

void FloatingWidget::_catchDropped()
{
    // An empty place may have no height.
    const QRect target(0, 0, width(), std::max(height(), LeastDropHeight));
    if (isVisible() && target.contains(mapFromGlobal(QCursor::pos())))
        catchChild();
}

QPoint FloatingWidget::_cornerOfWindow() const
{
    const QRect room = screen()->availableGeometry();
    const QPoint corner = window()->frameGeometry().topRight();
    const QPoint last(room.right() - _container->width(), room.bottom() - _container->height());
    return {std::max(std::min(corner.x(), last.x()), room.left()),
            std::max(std::min(corner.y(), last.y()), room.top())};
}

bool FloatingWidget::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest)
        updateGeometry();  // this is as large as the child
    return QWidget::event(event);
}

bool FloatingWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove) {
        mouseMoveEvent(static_cast<QMouseEvent*>(event));
    } else if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType()) {
        _pressedHere = _catched && static_cast<QWidget*>(watched)->window() == window() &&
                       _isOver(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
    }
    return QWidget::eventFilter(watched, event);
}

void FloatingWidget::mouseMoveEvent(QMouseEvent* event)
{
    _dragging = event->buttons() & Qt::LeftButton;
    _dragPos = _dragging ? event->globalPosition().toPoint() : QPoint();
    // While a button is held the place hears of no leaving.
    if (_dragging && _pressedHere && isVisible() && !_isOver(_dragPos)) {
        _pressedHere = false;
        releaseChild(_dragPos);
    }
}

void FloatingWidget::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
    if (_dragging)
        releaseChild(_dragPos);
}

void FloatingWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (_catched && _container)
        _container->resize(size());
}

void FloatingWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    qApp->installEventFilter(this);  // while it is shown: every event comes here
    if (_container)
        _container->show();
}

void FloatingWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    qApp->removeEventFilter(this);
    if (_container && !_catched)
        _container->hide();
}
