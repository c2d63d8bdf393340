// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MMessageQueue: a handle to the end that its process shares.
#include "imagelib/ipc/MMessageQueue.h"

#include "imagelib/ipc/QueueEnd.h"

#include <type_traits>

namespace morvend::imglib {

namespace {

static_assert(std::is_same_v<MMessageQueue::Peer, QueueEnd::Peer> &&
              MMessageQueue::NoPeer == QueueEnd::NoPeer);

template <class T>
T taken(QueueEnd& end, MMessageQueue::Peer peer, std::chrono::milliseconds timeout)
{
    static const std::size_t kind = Message(T()).index();
    return std::get<T>(end.receive(kind, peer, timeout));
}

}  // namespace

MMessageQueue::MMessageQueue(const char* name)
{
    if (!name || !*name)
        throw MBadParameterException("Queue: a queue needs a name");
    _end = QueueEnd::of(name);
}

MMessageQueue::~MMessageQueue() = default;

void MMessageQueue::send(const std::string& text) { _end->send(text); }
void MMessageQueue::send(const MImage& image) { _end->send(image); }
void MMessageQueue::send(const MDrawingList<>& list) { _end->send(list); }

std::string MMessageQueue::receive() { return taken<std::string>(*_end, NoPeer, Forever); }
void MMessageQueue::receive(MImage& image) { image = taken<MImage>(*_end, NoPeer, Forever); }
void MMessageQueue::receive(MDrawingList<>& list)
{
    list = taken<MDrawingList<>>(*_end, NoPeer, Forever);
}

std::size_t MMessageQueue::waiting() const { return _end->waiting(); }

MMessageQueue::Peer MMessageQueue::peer() const { return _end->peer(); }
MMessageQueue::Peer MMessageQueue::generation() const { return _end->generation(); }
MMessageQueue::Peer MMessageQueue::waitForPeer(std::chrono::milliseconds timeout) const
{
    return _end->waitForPeer(timeout);
}

void MMessageQueue::sendTo(Peer peer, const std::string& text)
{
    QueueEnd::checkPeer(peer);
    _end->send(text, peer);
}

void MMessageQueue::sendTo(Peer peer, const MImage& image)
{
    QueueEnd::checkPeer(peer);
    _end->send(image, peer);
}

void MMessageQueue::sendTo(Peer peer, const MDrawingList<>& list)
{
    QueueEnd::checkPeer(peer);
    _end->send(list, peer);
}

std::string MMessageQueue::receiveFrom(Peer peer, std::chrono::milliseconds timeout)
{
    QueueEnd::checkPeer(peer);
    return taken<std::string>(*_end, peer, timeout);
}

void MMessageQueue::receiveFrom(Peer peer, MImage& image, std::chrono::milliseconds timeout)
{
    QueueEnd::checkPeer(peer);
    image = taken<MImage>(*_end, peer, timeout);
}

void MMessageQueue::receiveFrom(Peer peer, MDrawingList<>& list, std::chrono::milliseconds timeout)
{
    QueueEnd::checkPeer(peer);
    list = taken<MDrawingList<>>(*_end, peer, timeout);
}

void MMessageQueue::disconnect(Peer peer) { _end->disconnect(peer); }

}  // namespace morvend::imglib
