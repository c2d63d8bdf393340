// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/support/PacedCalls.h"

#include <utility>

namespace {

/// Milliseconds after which a turn begins no other call. The last call and what the window paints
/// for all of them come on top.
constexpr qint64 LongestTurn = 15;

}  // namespace

PacedCalls::PacedCalls()
{
    _timer.setSingleShot(true);
    _timer.setTimerType(Qt::PreciseTimer);
    // Not 0, which waits until no queued call is left.
    _timer.setInterval(1);
    QObject::connect(&_timer, &QTimer::timeout, &_timer, [this] { _nextTurn(); });
}

PacedCalls& PacedCalls::ofThisProcess()
{
    static auto& calls = *new PacedCalls;  // never destroyed: timers outlive no application
    return calls;
}

void PacedCalls::call(const QObject* receiver, std::function<void()> call)
{
    if (!_waiting.empty() || !_turnHasTime())
        return _waiting.push_back({receiver, std::move(call)});
    if (!_turn.isValid()) {
        _turn.start();
        _timer.start();
    }
    call();
}

bool PacedCalls::_turnHasTime() const { return !_turn.isValid() || _turn.elapsed() < LongestTurn; }

void PacedCalls::_nextTurn()
{
    _turn.invalidate();
    if (_waiting.empty())
        return;
    _turn.start();
    while (!_waiting.empty() && _turnHasTime()) {
        const Call next = std::move(_waiting.front());
        _waiting.pop_front();
        if (next.receiver)
            next.call();
    }
    // Not before: it would be due at once, after a long turn, and leave no time for others.
    _timer.start();
}
