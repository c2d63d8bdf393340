// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The stream's end at the unit: a queue, and a thread that sends from it.
#pragma once

#include <QByteArray>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include <zmq.hpp>

namespace tarvik::simulator {

/// Binds a free port. What finds no receiver waits, up to a bound of bytes. Thread: any.
class StreamSender {
public:
    StreamSender();
    ~StreamSender();
    StreamSender(const StreamSender&) = delete;
    StreamSender& operator=(const StreamSender&) = delete;

    int port() const { return _port; }
    /// @param always  it must not be left out, though there is no room
    void send(const QByteArray& message, bool always = false, bool parts = false);
    /// Forgets what waits.
    void clear();
    /// Goes off the network, or comes back.
    void setPresent(bool present);
    qint64 dropped() const { return _dropped; }

private:
    struct Message {
        QByteArray bytes;
        bool parts;
    };
    void _run();
    bool _bound();
    bool _sendOne(const Message& message);

    zmq::context_t _context{1};
    zmq::socket_t _socket;
    int _port = 0;
    std::atomic<qint64> _dropped{0};
    std::atomic<bool> _present{true};
    std::atomic<bool> _stopping{false};
    std::atomic<int> _clearings{0};

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Message> _waiting;
    qint64 _waitingBytes = 0;
    std::thread _thread;
};

}  // namespace tarvik::simulator
