// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sending and receiving; the thread's part is in QueueThread.cpp.
#include "imagelib/ipc/QueueEnd.h"

#include "imagelib/image/Assert.h"

#include <algorithm>
#include <map>
#include <system_error>

#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace morvend::imglib {

namespace {

/// Messages of other kinds that a receive passes over before it reads no further.
constexpr std::size_t MostPassedOver = 1024;
/// Messages that one turn of reading takes at most.
constexpr std::size_t MostAtOnce = 256;

[[noreturn]] void throwPeerGone() { throw MPeerGoneException("Queue: the peer has gone"); }

}  // namespace

std::shared_ptr<QueueEnd> QueueEnd::of(const std::string& name)
{
    struct Registry {
        std::mutex mutex;
        std::map<std::string, std::weak_ptr<QueueEnd>> ends;
    };
    // Never destroyed: threads may wait in a queue while the process ends.
    static Registry& registry = *new Registry;
    const std::lock_guard lock(registry.mutex);
    std::erase_if(registry.ends, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<QueueEnd>& known = registry.ends[name];
    std::shared_ptr<QueueEnd> end = known.lock();
    if (!end) {
        end = std::make_shared<QueueEnd>(name, SegmentPool::process());
        known = end;
    }
    return end;
}

QueueEnd::QueueEnd(const std::string& name, std::shared_ptr<SegmentPool> pool)
    : _name(name)
    , _pool(std::move(pool))
    , _wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , _finder(_name, _pool)
{
    if (!_wake)
        throw MRuntimeException("Queue: too many files are open");
    if (const Link link = _finder.seek())
        join(link);
    // Signals are for the threads of the program.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        _thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw MRuntimeException(std::string("Queue: no thread: ") + error.what());
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

QueueEnd::~QueueEnd()
{
    {
        const std::lock_guard lock(_mutex);
        _closing = true;
    }
    wakeThread();
    _thread.join();
}

void QueueEnd::send(Message message, Peer peer)
{
    wire::Parcel parcel = wire::pack(std::move(message));
    parcel.audience = peer;
    const std::lock_guard sending(_sendMutex);
    if (peer != NoPeer && !(_sending && _sending->peer == peer))
        throwPeerGone();
    if (!_sending) {
        const std::lock_guard lock(_mutex);
        if (!_fault.empty())
            throw MRuntimeException(_fault);
        _outbox.push_back(std::move(parcel));
        return;
    }
    const bool waited = !_sending->writer.idle();
    _sending->writer.enqueue(std::move(parcel));
    for (;;) {
        try {
            if (!_sending->writer.flush() && !waited)
                wakeThread();
            return;
        } catch (const MPeerGoneException&) {
            if (peer != NoPeer)
                throw;
            return;  // the thread sees it too and keeps what is unsent for the next peer
        } catch (const MException& error) {
            // One was dropped. This message is the last: while any waits, the dropped one was
            // another.
            if (_sending->writer.idle())
                throw;
            complain(_name, error.what());
        }
    }
}

Message QueueEnd::receive(std::size_t kind, Peer peer, std::chrono::milliseconds timeout)
{
    const Deadline deadline(timeout);
    Lock lock(_mutex);
    for (bool last = false;; last = deadline.passed()) {
        if (auto message = takeFromInbox(kind, peer))
            return std::move(*message);
        if (peer != NoPeer && !(_link && _link->peer == peer))
            throwPeerGone();
        if (!_link && !_fault.empty())
            throw MRuntimeException(_fault);
        if (last)
            throw MTimeoutException("Queue: no message came in time");
        if (_link && !_reading && !inboxFull())
            readSome(lock, deadline);
        else
            wait(lock, deadline);
    }
}

std::optional<Message> QueueEnd::takeFromInbox(std::size_t kind, Peer peer)
{
    const auto found = std::ranges::find_if(_inbox, [&](const Received& each) {
        return each.message.index() == kind && (peer == NoPeer || each.peer == peer);
    });
    if (found == _inbox.end())
        return std::nullopt;
    Message message = std::move(found->message);
    const Peer from = found->peer;
    _inbox.erase(found);
    // What former peers left, unclaimed, no longer belongs to any conversation.
    while (!_inbox.empty() && _inbox.front().peer < from)
        _inbox.pop_front();
    _changed.notify_all();
    return message;
}

bool QueueEnd::inboxFull() const
{
    return _inbox.size() >= MostPassedOver &&
           std::ranges::count(_inbox, _link->peer, &Received::peer) >=
               std::ptrdiff_t(MostPassedOver);
}

void QueueEnd::wait(Lock& lock, const Deadline& deadline) const
{
    if (deadline.never())
        _changed.wait(lock);
    else
        _changed.wait_until(lock, deadline.at());
}

void QueueEnd::readSome(Lock& lock, const Deadline& deadline)
{
    const Link link = _link;
    _reading = true;
    lock.unlock();
    std::deque<Message> arrived;
    bool ended = collect(link, arrived, MostAtOnce);
    if (!ended && arrived.empty() && waitFor(link->socket.get(), POLLIN, deadline))
        ended = collect(link, arrived, MostAtOnce);
    if (ended) {
        store(link, arrived);
        leave(link);
        lock.lock();
        return;
    }
    lock.lock();
    _reading = false;
    for (Message& message : arrived)
        if (_link == link)
            _inbox.push_back({link->peer, std::move(message)});
    if (_hungUp)
        wakeThread();
    _changed.notify_all();
}

void QueueEnd::store(const Link& link, std::deque<Message>& arrived)
{
    const std::lock_guard lock(_mutex);
    _reading = false;
    for (Message& message : arrived)
        if (_link == link)
            _inbox.push_back({link->peer, std::move(message)});
}

bool QueueEnd::collect(const Link& link, std::deque<Message>& arrived, std::size_t most)
{
    try {
        auto message = link->reader.poll();
        while (message && arrived.size() < most) {
            arrived.push_back(std::move(*message));
            message = link->reader.buffered();
        }
        if (message)
            arrived.push_back(std::move(*message));
        return false;
    } catch (const MPeerGoneException&) {
    } catch (const std::exception& exception) {
        complain(_name, std::string("connection ended: ") + exception.what());
    }
    ::shutdown(link->socket.get(), SHUT_RDWR);
    return true;
}

void QueueEnd::checkPeer(Peer peer)
{
    if (peer == NoPeer)
        throw MPeerGoneException("Queue: there is no peer");
}

std::size_t QueueEnd::waiting() const
{
    const std::lock_guard sending(_sendMutex);
    return _outbox.size() + (_sending ? _sending->writer.waiting() : 0);
}

QueueEnd::Peer QueueEnd::peer() const
{
    const std::lock_guard lock(_mutex);
    return _link ? _link->peer : NoPeer;
}

QueueEnd::Peer QueueEnd::generation() const
{
    const std::lock_guard lock(_mutex);
    return _generation;
}

QueueEnd::Peer QueueEnd::waitForPeer(std::chrono::milliseconds timeout) const
{
    const Deadline deadline(timeout);
    Lock lock(_mutex);
    while (!_link) {
        if (!_fault.empty())
            throw MRuntimeException(_fault);
        if (deadline.passed())
            return NoPeer;
        wait(lock, deadline);
    }
    return _link->peer;
}

void QueueEnd::disconnect(Peer peer)
{
    Link link;
    {
        const std::lock_guard lock(_mutex);
        if (!_link || _link->peer != peer)
            return;
        link = _link;
    }
    ::shutdown(link->socket.get(), SHUT_RDWR);
    leave(link);
    // From here on no thread stores messages of this peer.
    const std::lock_guard lock(_mutex);
    std::erase_if(_inbox, [&](const Received& each) { return each.peer == peer; });
}

}  // namespace morvend::imglib
