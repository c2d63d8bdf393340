// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/ToolBarOverflow.h"

#include "gui/kit/SvgIcon.h"

#include <QEvent>
#include <QMenu>

#include <utility>

ToolBarOverflow::ToolBarOverflow(QToolBar& bar)
    : QObject(&bar)
    , _bar(bar)
    , _button(bar.findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button")))
{
    if (!_button)
        return;
    _button->setIcon(svgIcon(QStringLiteral(":icons/right.svg"), QSize(16, 16)));
    // As narrow as the place that the bar leaves for it, or it would be cut off.
    _button->setIconSize(QSize(10, 10));
    _button->setStyleSheet(QStringLiteral("QToolButton { min-width: 0px; padding: 0px; }"));
    _button->installEventFilter(this);
}

bool ToolBarOverflow::eventFilter(QObject* watched, QEvent* event)
{
    // The bar disables it if nothing but widgets are left out.
    if (event->type() == QEvent::EnabledChange && !_button->isEnabled())
        _button->setEnabled(true);
    else if (event->type() == QEvent::MouseButtonPress)
        _fill();
    return QObject::eventFilter(watched, event);
}

void ToolBarOverflow::_fill()
{
    QMenu* menu = _button->menu();
    if (!menu) {
        menu = new QMenu(&_bar);
        _button->setMenu(menu);
    }
    for (QPointer<QAction>& entry : std::exchange(_entries, {}))
        delete entry;
    for (QAction* action : _bar.actions()) {
        auto* button = qobject_cast<QAbstractButton*>(_bar.widgetForAction(action));
        if (!button || button->isVisible() || menu->actions().contains(action))
            continue;
        QAction* entry = menu->addAction(button->text());
        entry->setCheckable(button->isCheckable());
        entry->setChecked(button->isChecked());
        const auto* opener = qobject_cast<QToolButton*>(button);
        if (opener && opener->popupMode() == QToolButton::InstantPopup)
            entry->setMenu(opener->menu());
        connect(entry, &QAction::triggered, button, &QAbstractButton::click);
        _entries.append(entry);
    }
}
