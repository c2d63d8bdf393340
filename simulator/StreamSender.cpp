// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/StreamSender.h"

#include <QString>

namespace tarvik::simulator {
namespace {

constexpr qint64 MostWaitingBytes = qint64(512) << 20;
constexpr int MostQueuedMessages = 8;
constexpr std::chrono::milliseconds Pause{20};

zmq::socket_t makeSocket(zmq::context_t& context, int port)
{
    zmq::socket_t socket(context, zmq::socket_type::push);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, MostQueuedMessages);
    socket.set(zmq::sockopt::sndtimeo, int(Pause.count()));
    socket.bind("tcp://*:" + (port ? std::to_string(port) : "*"));
    return socket;
}

}  // namespace

StreamSender::StreamSender()
    : _socket(makeSocket(_context, 0))
    , _port(
          QString::fromStdString(_socket.get(zmq::sockopt::last_endpoint)).section(':', -1).toInt())
    , _thread([this] { _run(); })
{}

StreamSender::~StreamSender()
{
    _stopping = true;
    _changed.notify_all();
    _thread.join();
}

void StreamSender::send(const QByteArray& message, bool always, bool parts)
{
    const std::lock_guard lock(_mutex);
    if (!always && _waitingBytes + message.size() > MostWaitingBytes) {
        ++_dropped;
        return;
    }
    _waiting.push_back({message, parts});
    _waitingBytes += message.size();
    _changed.notify_all();
}

void StreamSender::clear()
{
    const std::lock_guard lock(_mutex);
    ++_clearings;
    _dropped += qint64(_waiting.size());
    _waiting.clear();
    _waitingBytes = 0;
}

void StreamSender::setPresent(bool present)
{
    _present = present;
    _changed.notify_all();
}

/// Has the socket its port? It leaves and takes it as the unit goes and comes.
bool StreamSender::_bound()
{
    if (!_present) {
        _socket.close();
        return false;
    }
    try {
        if (!_socket)
            _socket = makeSocket(_context, _port);
        return true;
    } catch (const zmq::error_t&) {
        return false;  // the old one still holds it
    }
}

bool StreamSender::_sendOne(const Message& message)
{
    const auto size = static_cast<std::size_t>(message.bytes.size());
    if (!message.parts)
        return _socket.send(zmq::buffer(message.bytes.constData(), size)).has_value();
    const std::size_t half = size / 2;
    return _socket.send(zmq::buffer(message.bytes.constData(), half), zmq::send_flags::sndmore) &&
           _socket.send(zmq::buffer(message.bytes.constData() + half, size - half));
}

void StreamSender::_run()
{
    std::unique_lock lock(_mutex);
    while (!_stopping) {
        if (!_bound() || _waiting.empty()) {
            _changed.wait_for(lock, Pause);
            continue;
        }
        const Message message = _waiting.front();
        _waiting.pop_front();
        _waitingBytes -= message.bytes.size();
        const int clearings = _clearings;
        lock.unlock();
        bool sent = false;
        while (!sent && _present && !_stopping && clearings == _clearings)
            sent = _sendOne(message);
        lock.lock();
        if (!sent && clearings == _clearings) {
            _waiting.push_front(message);
            _waitingBytes += message.bytes.size();
        }
    }
}

}  // namespace tarvik::simulator
