// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/PopupButton.h"

#include "gui/kit/PanelMenu.h"

PopupButton::PopupButton(QWidget* popup, QWidget* parent)
    : QToolButton(parent)
    , _menu(new Menu(popup, this))
    , _popup(popup)
{
    setMenu(_menu);
    connect(_menu, &QMenu::aboutToShow, this, [this] {
        if (_popup)
            _popup->setFocus(Qt::PopupFocusReason);
    });
}

QSize PopupButton::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 30, QToolButton::sizeHint().height()};
}

void PopupButton::hideMenu() { _menu->hide(); }
