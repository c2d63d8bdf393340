// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The end of a queue that all queue objects of a process share.
#pragma once

#include "imagelib/ipc/PeerFinder.h"
#include "imagelib/ipc/WireFormat.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace morvend::imglib {

/// Both directions of a queue over all its connections.
///
/// Senders write to the socket themselves; the rest waits for the end's own thread,
/// which also finds peers and notices when they go. Receivers read the socket themselves, one at
/// a time. Locks: _sendMutex before _mutex; none is held across a wait.
class QueueEnd {
public:
    /// As MMessageQueue::Peer and NoPeer.
    using Peer = std::uint64_t;
    static constexpr Peer NoPeer = 0;

    /// The end of that name in this process, created if needed.
    static std::shared_ptr<QueueEnd> of(const std::string& name);

    /// An end that is not shared; see MMessageQueue for what is thrown.
    QueueEnd(const std::string& name, std::shared_ptr<SegmentPool> pool);
    ~QueueEnd();
    QueueEnd(const QueueEnd&) = delete;
    QueueEnd& operator=(const QueueEnd&) = delete;

    /// Sends to `peer` only, or to the present or next peer.
    void send(Message message, Peer peer = NoPeer);
    /// The first message with the index `kind` of Message, of `peer` or of any.
    Message receive(std::size_t kind, Peer peer, std::chrono::milliseconds timeout);

    /// @throws MPeerGoneException also for NoPeer
    static void checkPeer(Peer peer);

    std::size_t waiting() const;
    Peer peer() const;
    Peer generation() const;
    Peer waitForPeer(std::chrono::milliseconds timeout) const;
    void disconnect(Peer peer);

private:
    using Link = std::shared_ptr<QueueLink>;
    using Lock = std::unique_lock<std::mutex>;
    struct Received {
        Peer peer = 0;
        Message message;
    };

    // For receivers; those with a lock are called under _mutex.
    /// Takes the first message of that kind out of those that have been read.
    std::optional<Message> takeFromInbox(std::size_t kind, Peer peer);
    /// True if the most messages that may wait for a receive of their kind do.
    bool inboxFull() const;
    /// Waits for messages on the socket and stores them. The lock is released meanwhile.
    void readSome(Lock& lock, const Deadline& deadline);
    /// Reads what a departed peer left, unless a receiver does.
    void readToTheEnd(const Link& link);
    /// Reads what has arrived, without waiting. @returns true when the connection has ended
    bool collect(const Link& link, std::deque<Message>& arrived, std::size_t most);
    /// Stores what is left of a connection that has been read to its end.
    void store(const Link& link, std::deque<Message>& arrived);
    void wait(Lock& lock, const Deadline& deadline) const;

    // For the end's own thread (QueueThread.cpp).
    /// Seeks a peer and serves it, by turns, until the end closes.
    void run();
    /// Looks for a peer, until something else is to be done.
    void seek();
    /// Makes a connection the present one: waiting messages are for its peer.
    void join(const Link& link);
    /// Ends a connection; messages that it did not take wait for the next one. Also by receivers.
    void leave(const Link& link);
    /// Attends to a connection until something happens.
    void serve(const Link& link);
    /// Writes what waits for a connection. @returns true when nothing is left
    bool flush(const Link& link, bool& stalled);
    /// On closing: hands what waits to the peer, if one is there or about to connect.
    void handOver();
    /// Ends the thread's wait. Any thread.
    void wakeThread();

    const std::string _name;
    const std::shared_ptr<SegmentPool> _pool;
    UniqueFd _wake;      // an event for the thread
    PeerFinder _finder;  // only for the thread, once it runs

    mutable std::mutex _sendMutex;
    std::deque<wire::Parcel> _outbox;  // for the next peer
    Link _sending;                     // the connection that is written to

    mutable std::mutex _mutex;
    mutable std::condition_variable _changed;
    Link _link;             // the connection that is read from
    bool _reading = false;  // somebody reads it
    bool _hungUp = false;   // its end was seen, but not yet reached by reading
    Peer _generation = 0;
    std::deque<Received> _inbox;
    std::string _fault;  // why there can't be a peer now
    bool _closing = false;

    std::thread _thread;
};

}  // namespace morvend::imglib
