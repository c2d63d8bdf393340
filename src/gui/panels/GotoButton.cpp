// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/GotoButton.h"

#include "gui/kit/SvgIcon.h"
#include "gui/panels/GotoWidget.h"

GotoButton::GotoButton(TarvikService* service, QWidget* parent)
    : PopupButton(new GotoWidget(service, nullptr), parent)
{
    constexpr QSize IconSize(25, 15);
    setAccessibleName(QStringLiteral("Go To Image"));
    setIcon(svgIcon(QStringLiteral(":icons/goto.svg"), IconSize));
    setIconSize(IconSize);
    setToolTip(QStringLiteral("Go to image: Load image by entering its file number"));
    setPopupMode(QToolButton::InstantPopup);
    setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    const auto* widget = qobject_cast<GotoWidget*>(popup());
    connect(widget, &GotoWidget::loadFile, this, &PopupButton::hideMenu);
    connect(widget, &GotoWidget::cancel, this, &PopupButton::hideMenu);
}
