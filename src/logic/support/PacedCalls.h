// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Work of the GUI thread that comes in crowds.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <functional>

/// Spreads calls over the turns of the event loop. Queued calls are all done in one turn, in which
/// no key, click or timer is seen: the images of twenty views that were opened together would stop
/// the window for a second. Here those that come when a turn has lasted long wait for the next
/// ones. Thread: GUI.
class PacedCalls {
public:
    static PacedCalls& ofThisProcess();

    /// Calls at once, or later in the order of the calls; forgets a call whose receiver has gone.
    void call(const QObject* receiver, std::function<void()> call);

private:
    struct Call {
        QPointer<const QObject> receiver;
        std::function<void()> call;
    };

    PacedCalls();
    bool _turnHasTime() const;
    void _nextTurn();

    std::deque<Call> _waiting;
    QElapsedTimer _turn;  // invalid until the first call of a turn
    QTimer _timer;        // ends the turn
};
