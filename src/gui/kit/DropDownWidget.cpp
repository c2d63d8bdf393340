// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/DropDownWidget.h"

#include "gui/kit/PanelMenu.h"

#include <QCursor>

#include <limits>

DropDownWidget::DropDownWidget(QWidget* parent)
    : _action(new QAction(this))
    , _menu(new PanelMenu(this, parent))
{
    connect(_action, &QAction::triggered, this, [this] { exec(); });
}

DropDownWidget::~DropDownWidget()
{
    if (_menu)
        _menu->deleteLater();  // not the reason for this end: it would be gone
}

void DropDownWidget::exec()
{
    if (!_menu)
        return;
    const QPoint cursor = QCursor::pos();
    QPoint place = cursor;
    long long least = std::numeric_limits<long long>::max();
    for (const QObject* each : _action->associatedObjects()) {
        const auto* widget = qobject_cast<const QWidget*>(each);
        if (!widget || !widget->isVisible())
            continue;
        const QPoint corner = widget->mapToGlobal(QPoint(0, widget->height()));
        const long long dx = corner.x() - cursor.x();
        const long long dy = corner.y() - cursor.y();
        if (dx * dx + dy * dy < least) {
            least = dx * dx + dy * dy;
            place = corner;
        }
    }
    _menu->popup(place);
}
