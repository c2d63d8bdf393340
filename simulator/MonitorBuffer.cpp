// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/MonitorBuffer.h"

#include <QTimer>

namespace tarvik::simulator {

void MonitorBuffer::add(int series, int frame, const QByteArray& packet, int most)
{
    _latest = {QString("%1.%2").arg(series).arg(frame), packet};
    _pictures.push_back(_latest);
    std::erase_if(_waiters, [this](const Waiter& waiter) { return _serve(waiter); });
    for (; _pictures.size() > std::size_t(most); ++_dropped)
        _pictures.pop_front();
}

void MonitorBuffer::clear()
{
    _pictures.clear();
    _latest = {};
    _dropped = 0;
}

bool MonitorBuffer::_serve(const Waiter& waiter)
{
    if (waiter.next ? _pictures.empty() : _latest.name.isEmpty() || _latest.name == waiter.after)
        return false;
    waiter.respond(
        {200, waiter.next ? _pictures.front().packet : _latest.packet, "application/octet-stream"});
    if (waiter.next)
        _pictures.pop_front();
    return true;
}

void MonitorBuffer::_wait(const Waiter& waiter, int waitMs)
{
    if (_serve(waiter))
        return;
    _waiters.push_back(waiter);
    QTimer::singleShot(waitMs, this, [this, id = waiter.id] {
        std::erase_if(_waiters, [id](const Waiter& each) {
            if (each.id == id)
                each.respond({204, {}});
            return each.id == id;
        });
    });
}

void MonitorBuffer::latest(const QString& after, int waitMs, const Respond& respond)
{
    _wait({++_lastId, false, after, respond}, waitMs);
}

void MonitorBuffer::next(int waitMs, const Respond& respond)
{
    _wait({++_lastId, true, {}, respond}, waitMs);
}

}  // namespace tarvik::simulator
