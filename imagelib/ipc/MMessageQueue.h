// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A named, bidirectional message queue between two processes of one user on one machine.
#pragma once

#include "imagelib/display/MDrawingList.h"
#include "imagelib/image/MException.h"
#include "imagelib/image/MImage.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace morvend::imglib {

class QueueEnd;

/// One end of a queue between two processes that share nothing but its name.
///
/// Either side may come first, and a peer that ends or is killed may come back: messages sent
/// meanwhile wait in this process, in order. Each message arrives whole, once and in the order of
/// its direction, or not at all if the peer that received it dies. All objects of a
/// process with one name share one end. Only processes of the same user can connect; a third one
/// waits until one of the two has gone.
///
/// Text, images and drawing lists share one order. A receive takes the first message of its own
/// kind; those of other kinds stay for the receives that ask for them, until a message of a later
/// peer is received. The form of the bytes: docs/protocols/queue.md.
///
/// Large images cross by naming a segment of shared memory; one whose pixels lie in
/// SegmentPool::process() is not copied at all. What is sent may be changed afterwards: the queue
/// keeps the pixels as they are. A received image shares the sender's memory, read-only, and stays
/// valid whatever happens to the sender.
///
/// Thread: any, also several at a time; don't destroy an object that another thread waits in.
class MMessageQueue {
public:
    /// One connection with a peer, numbered from 1; greater for each that follows.
    using Peer = std::uint64_t;
    static constexpr Peer NoPeer = 0;
    /// Longest text of a message, in bytes.
    static constexpr std::size_t LongestText = std::size_t(64) << 20;
    /// A time-out that never passes.
    static constexpr std::chrono::milliseconds Forever{-1};

    /// Opens the queue of that name, any non-empty text.
    /// @throws MBadParameterException without a name, MRuntimeException when another user holds it
    explicit MMessageQueue(const char* name);
    /// The last object of a name closes the end: what the connected peer has not received yet
    /// is handed over, if that takes no longer than about a second; the rest is dropped.
    ~MMessageQueue();
    MMessageQueue(const MMessageQueue&) = delete;
    MMessageQueue& operator=(const MMessageQueue&) = delete;

    /// Sends a message, to the next peer if none is there. Never waits for the peer.
    /// @throws MBadParameterException for a text beyond LongestText or a mask with a mask of its
    /// own, MRuntimeException when another user holds the name
    void send(const std::string& text);
    void send(const MImage& image);
    void send(const MDrawingList<>& list);

    /// Blocks until a message of that kind is there, while peers come and go.
    /// @throws MRuntimeException when another user holds the name
    std::string receive();
    void receive(MImage& image);
    void receive(MDrawingList<>& list);

    /// Number of messages that wait in this process, for a peer or for room in its socket. A
    /// producer that is faster than its peer watches it.
    std::size_t waiting() const;

    /// The connected peer, or NoPeer.
    Peer peer() const;
    bool connected() const { return peer() != NoPeer; }
    /// The latest peer, connected or gone; 0 before the first.
    Peer generation() const;
    /// Waits until a peer is connected. Returns it, or NoPeer after the time-out.
    Peer waitForPeer(std::chrono::milliseconds timeout = Forever) const;

    /// Questions and answers with one peer, for those who can go on without it: as send() and
    /// receive(), but to and from `peer` alone.
    /// @throws MPeerGoneException when it has gone (for a receive: and left no such message);
    /// MTimeoutException when the time-out passes first
    void sendTo(Peer peer, const std::string& text);
    void sendTo(Peer peer, const MImage& image);
    void sendTo(Peer peer, const MDrawingList<>& list);
    std::string receiveFrom(Peer peer, std::chrono::milliseconds timeout = Forever);
    void receiveFrom(Peer peer, MImage& image, std::chrono::milliseconds timeout = Forever);
    void receiveFrom(Peer peer, MDrawingList<>& list, std::chrono::milliseconds timeout = Forever);
    /// Ends the connection with `peer`, such as one that does not answer in time, and drops its
    /// messages. Nothing happens when it has gone already.
    void disconnect(Peer peer);

private:
    std::shared_ptr<QueueEnd> _end;
};

}  // namespace morvend::imglib
