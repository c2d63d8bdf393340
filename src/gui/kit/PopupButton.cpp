// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/PopupButton.h"

#include <QMenu>
#include <QWidgetAction>

/// A menu that leaves the keys to the panel in it: a menu takes letters and arrows for a choice
/// among its entries.
class PopupButton::Menu : public QMenu {
public:
    using QMenu::QMenu;

protected:
    void keyPressEvent(QKeyEvent* event) override { QWidget::keyPressEvent(event); }
    void keyReleaseEvent(QKeyEvent* event) override { QWidget::keyReleaseEvent(event); }
    bool focusNextPrevChild(bool next) override { return QWidget::focusNextPrevChild(next); }
};

PopupButton::PopupButton(QWidget* popup, QWidget* parent)
    : QToolButton(parent)
    , _menu(new Menu(this))
    , _popup(popup)
{
    auto* action = new QWidgetAction(_menu);
    action->setDefaultWidget(popup);
    _menu->addAction(action);
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
