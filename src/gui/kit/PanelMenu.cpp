// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/PanelMenu.h"

#include <QWidgetAction>

PanelMenu::PanelMenu(QWidget* panel, QWidget* parent)
    : QMenu(parent)
{
    auto* action = new QWidgetAction(this);
    action->setDefaultWidget(panel);
    addAction(action);
}
