// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/ScrollIntoSight.h"

#include <QCoreApplication>
#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace {

/// Widgets within widgets, from the content of a panel to the area; further rounds cost nothing.
constexpr int MostLevels = 30;

}  // namespace

void scrollIntoSight(QScrollArea& area, QWidget& part, int above)
{
    if (!part.isVisible() || !area.widget()->isAncestorOf(&part))
        return;
    // A layout hears of a change inside it by an event, and the one around it by an event that is
    // posted then. The area is the last of them, and has no room to scroll before.
    for (int level = 0; level < MostLevels; ++level)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    const int top = part.mapTo(area.widget(), QPoint()).y() - above;
    const int bottom = top + above + part.height();
    QScrollBar* const bar = area.verticalScrollBar();
    const int least = bottom - area.viewport()->height();
    bar->setValue(std::min(std::max(bar->value(), least), top));
}
