// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/CalmWheel.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>

namespace {

/// Leaves the wheel to the parents of a field without the focus.
class WheelFilter : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus())
            return false;
        event->ignore();
        return true;
    }
};

}  // namespace

void calmWheel(QWidget& around)
{
    static auto* const filter = new WheelFilter(QCoreApplication::instance());
    const auto calm = [](QWidget* field) {
        if (field->focusPolicy() == Qt::WheelFocus)
            field->setFocusPolicy(Qt::StrongFocus);
        field->installEventFilter(filter);
    };
    for (auto* field : around.findChildren<QAbstractSpinBox*>())
        calm(field);
    for (auto* field : around.findChildren<QComboBox*>())
        calm(field);
}
