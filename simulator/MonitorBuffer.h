// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pictures that the unit keeps, and the requests that wait for one.
#pragma once

#include "simulator/HttpServer.h"

#include <QObject>

#include <deque>
#include <vector>

namespace tarvik::simulator {

/// Thread: that of the server.
class MonitorBuffer : public QObject {
    Q_OBJECT
public:
    void add(int series, int frame, const QByteArray& packet, int most);
    void clear();
    /// The newest picture that is not `after` ("series.frame"), now or within a time.
    void latest(const QString& after, int waitMs, const Respond& respond);
    /// The oldest one, which leaves the buffer.
    void next(int waitMs, const Respond& respond);
    qint64 dropped() const { return _dropped; }

private:
    struct Picture {
        QString name;  // "series.frame"
        QByteArray packet;
    };
    struct Waiter {
        int id;
        bool next;
        QString after;
        Respond respond;
    };
    bool _serve(const Waiter& waiter);
    void _wait(const Waiter& waiter, int waitMs);

    std::deque<Picture> _pictures;
    Picture _latest;
    std::vector<Waiter> _waiters;
    int _lastId = 0;
    qint64 _dropped = 0;
};

}  // namespace tarvik::simulator
