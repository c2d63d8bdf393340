// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which keys are held down.
#include "gui/kit/PressedKeys.h"

#include <QKeyEvent>
#include <QMutex>
#include <QSet>

namespace {

QMutex pressedKeysMutex;

QSet<int>& pressedKeysTable()
{
    static QSet<int> table;
    return table;
}

}  // namespace

bool PressedKeys::pressed(int key)
{
    const QMutexLocker lock(&pressedKeysMutex);
    return pressedKeysTable().contains(key);
}

void PressedKeys::record(const QEvent& event)
{
    if (event.type() == QEvent::ApplicationDeactivate || event.type() == QEvent::WindowDeactivate) {
        clear();
        return;
    }
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease)
        return;
    const auto& key = static_cast<const QKeyEvent&>(event);
    // The releases of a key that repeats itself are none.
    if (key.key() == Qt::Key_Escape || key.isAutoRepeat())
        return;
    const QMutexLocker lock(&pressedKeysMutex);
    if (event.type() == QEvent::KeyPress)
        pressedKeysTable().insert(key.key());
    else
        pressedKeysTable().remove(key.key());
}

void PressedKeys::clear()
{
    const QMutexLocker lock(&pressedKeysMutex);
    pressedKeysTable().clear();
}
