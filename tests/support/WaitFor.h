// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Waiting for what the event loop brings.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

/// Runs the event loop until a condition holds. @returns whether it did within ten seconds
template <class Condition>
bool waitFor(Condition&& condition)
{
    return QTest::qWaitFor(condition, 10000);
}

/// Lets everything happen that is due, deletions included.
inline void settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
