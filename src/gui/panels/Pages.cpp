// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/Pages.h"

#include <QStackedLayout>
#include <QWidget>

void showPage(QStackedLayout& pages, int index)
{
    for (int i = 0; i < pages.count(); ++i) {
        const auto policy = i == index ? QSizePolicy::Preferred : QSizePolicy::Ignored;
        pages.widget(i)->setSizePolicy(policy, policy);
    }
    pages.setCurrentIndex(index);
    pages.invalidate();
    if (QWidget* const widget = pages.parentWidget())
        widget->updateGeometry();
}
