// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/AbstractSubWindow.h"

#include "logic/support/Assert.h"

#include <QApplication>
#include <QCloseEvent>

#include <algorithm>

namespace {

unsigned char colorPart(int value) { return static_cast<unsigned char>(std::clamp(value, 0, 255)); }

}  // namespace

AbstractSubWindow::AbstractSubWindow(QWidget* parent)
    : QWidget(parent)
    , _layout(new QVBoxLayout(this))
    , _titleBar(new TitleBar(this))
{
    setFocusPolicy(Qt::StrongFocus);
    _layout->setContentsMargins(0, 0, 0, 0);
    _layout->setSpacing(0);
    _layout->addWidget(_titleBar);
    connect(_titleBar->exitButton(), &QPushButton::clicked, this, &QWidget::close);
    connect(qApp, &QApplication::focusChanged, this, &AbstractSubWindow::_processFocusChanged);
}

void AbstractSubWindow::setActivated(bool activated)
{
    if (activated == _active)
        return;
    _active = activated;
    _titleBar->setActivated(activated);
    if (!activated) {
        emit windowStateChanged(Qt::WindowActive, {});
        return;
    }
    // A child that has the focus, such as a field that was just clicked, keeps it.
    const QWidget* focus = QApplication::focusWidget();
    if (focus != this && !(focus && isAncestorOf(focus)))
        setFocus(Qt::OtherFocusReason);
    emit gotActivated(this);
    emit windowStateChanged({}, Qt::WindowActive);
}

void AbstractSubWindow::setWidget(QWidget* widget)
{
    assert(widget);
    delete _widget;
    _widget = widget;
    _layout->insertWidget(1, widget, 1);
}

void AbstractSubWindow::hideToolButtons() { _setToolButtonsVisible(false); }

void AbstractSubWindow::showToolButtons() { _setToolButtonsVisible(true); }

void AbstractSubWindow::setActiveColor(int red, int green, int blue)
{
    _titleBar->setActiveColor(colorPart(red), colorPart(green), colorPart(blue));
    update();
}

void AbstractSubWindow::setNonActiveColor(int red, int green, int blue)
{
    _titleBar->setNonActiveColor(colorPart(red), colorPart(green), colorPart(blue));
    update();
}

void AbstractSubWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    emit terminated(this);
}

void AbstractSubWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowTitleChange)
        _titleBar->setTitle(windowTitle());
    else if (event->type() == QEvent::EnabledChange && !isEnabled())
        setActivated(false);
}

void AbstractSubWindow::_processFocusChanged(QWidget* old, QWidget* now)
{
    Q_UNUSED(old)
    if (now == this || (now && isAncestorOf(now)))
        setActivated(true);
}

void AbstractSubWindow::_setToolButtonsVisible(bool visible)
{
    for (QWidget* item : _titleBar->titleWidgets())
        item->setVisible(visible);
    _titleBar->exitButton()->setVisible(visible);
    _toolButtonsShown = visible;
    emit toolButtonsShownSignal(visible);
}
