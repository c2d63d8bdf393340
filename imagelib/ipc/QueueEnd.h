// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The end of a queue that all queue objects of a process share.
#pragma once

#include "imagelib/ipc/MMessageQueue.h"
#include "imagelib/ipc/Message.h"
#include "imagelib/ipc/PeerFinder.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace morvend::imglib {

/// Both directions of a queue over all its connections.
///
/// Senders write to the socket themselves; what it does not take waits for the end's own thread,
/// which also finds peers and learns of their going. Receivers read the socket themselves, one at
/// a time. Locks: _sendMutex before _mutex; none is held across a wait.
class QueueEnd {
public:
    using Peer = MMessageQueue::Peer;

    /// The end of that name in this process, made when there is none.
    static std::shared_ptr<QueueEnd> of(const std::string& name);

    /// An end that is not shared; see MMessageQueue for what is thrown.
    QueueEnd(const std::string& name, std::shared_ptr<SegmentPool> pool);
    ~QueueEnd();
    QueueEnd(const QueueEnd&) = delete;
    QueueEnd& operator=(const QueueEnd&) = delete;

    /// To `peer` alone, or to the present or next one.
    void send(Message message, Peer peer = MMessageQueue::NoPeer);
    /// The first message with the index `kind` of Message, of `peer` or of any.
    Message receive(std::size_t kind, Peer peer, std::chrono::milliseconds timeout);

    /// @throws MPeerGoneException for NoPeer, which no conversation can be held with
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

    std::optional<Message> pick(std::size_t kind, Peer peer);
    bool crowded() const;
    void readSome(Lock& lock, const Deadline& deadline);
    void readToTheEnd(const Link& link);
    bool collect(const Link& link, std::deque<Message>& arrived, std::size_t most);
    void store(const Link& link, std::deque<Message>& arrived);
    void wait(Lock& lock, const Deadline& deadline) const;

    void run();
    void seek();
    void join(const Link& link);
    void leave(const Link& link);
    void serve(const Link& link);
    bool flush(const Link& link, bool& stalled);
    void handOver();
    void wake();

    const std::string _name;
    const std::shared_ptr<SegmentPool> _pool;
    UniqueFd _wake;      // an event for the thread
    PeerFinder _finder;  // the thread's alone, once it runs

    mutable std::mutex _sendMutex;
    std::deque<wire::Parcel> _outbox;  // for the next peer
    Link _sending;                     // the connection that is written to

    mutable std::mutex _mutex;
    mutable std::condition_variable _changed;
    Link _link;             // the connection that is read from
    bool _reading = false;  // somebody reads it
    bool _hungUp = false;   // its end has been seen, but not been read up to
    Peer _generation = 0;
    std::deque<Received> _inbox;
    std::string _fault;  // why there can't be a peer now
    bool _closing = false;

    std::thread _thread;
};

}  // namespace morvend::imglib
