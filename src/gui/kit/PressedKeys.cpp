// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
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

void PressedKeys::record(const QKeyEvent& event)
{
    // Auto-repeat sends releases that are not real.
    if (event.key() == Qt::Key_Escape || event.isAutoRepeat())
        return;
    const QMutexLocker lock(&pressedKeysMutex);
    if (event.type() == QEvent::KeyPress)
        pressedKeysTable().insert(event.key());
    else
        pressedKeysTable().remove(event.key());
}

void PressedKeys::clear()
{
    const QMutexLocker lock(&pressedKeysMutex);
    pressedKeysTable().clear();
}
