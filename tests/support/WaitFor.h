// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Waiting for what the event loop brings.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

/// Milliseconds after which a test gives up on what never comes; however busy the machine is,
/// whatever comes at all comes sooner.
inline constexpr int Patience = 120'000;

/// Runs the event loop until a condition holds. @returns whether it did
template <class Condition>
bool waitFor(Condition&& condition)
{
    return QTest::qWaitFor(condition, Patience);
}

/// Lets everything happen that is due, deletions included.
inline void settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
