// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Messages over a connected Unix socket, such as a pair between a parent and its child.
#pragma once

#include "imagelib/image/MException.h"
#include "imagelib/ipc/SegmentPool.h"
#include "imagelib/ipc/UniqueFd.h"
#include "imagelib/ipc/WireFormat.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace morvend::imglib {

/// One end of a connection; the other end is a channel too. Both say hello first.
///
/// Nothing that comes from the other end is trusted: a malformed frame is an MRuntimeException that
/// says what is wrong, and the channel is unusable afterwards. Received images stay valid
/// after the channel and the peer have gone.
/// Thread: one that sends and one that receives at a time.
class MessageChannel {
public:
    static constexpr std::chrono::milliseconds Forever{-1};

    /// Takes a connected stream socket of the family AF_UNIX. `name` is said in the hello, and the
    /// peer must say the same.
    explicit MessageChannel(UniqueFd socket,
                            std::shared_ptr<SegmentPool> pool = SegmentPool::process(),
                            std::string name = {});
    ~MessageChannel();
    MessageChannel(const MessageChannel&) = delete;
    MessageChannel& operator=(const MessageChannel&) = delete;

    /// Two connected sockets for a parent and a child, both closed on exec.
    static std::pair<UniqueFd, UniqueFd> socketPair();

    /// Sends a message; blocks while the socket is full.
    /// @throws MPeerGoneException, MTimeoutException (the channel is then unusable),
    /// MBadParameterException as MMessageQueue::send
    void send(const Message& message, std::chrono::milliseconds timeout = Forever);
    /// Sends two messages, which wake the peer once. If one of them is refused with an
    /// MBadParameterException, neither is sent.
    void sendBoth(Message first, Message second);
    /// The next message.
    /// @throws MPeerGoneException when the peer has gone and all it sent is received,
    /// MTimeoutException when nothing came in time, MRuntimeException for a malformed frame
    Message receive(std::chrono::milliseconds timeout = Forever);

    /// Appends a message to those that wait to be written.
    void enqueue(Message message);
    /// Writes what can be written without waiting. Returns true when nothing is left.
    bool flush();
    /// The next message that is available without waiting, if any.
    std::optional<Message> poll();

    /// The socket, to wait on. It may be readable before a message is complete.
    int fd() const;
    /// Wakes all who wait here; to them the peer has gone.
    void shutdown();

private:
    struct Private;
    const std::unique_ptr<Private> _d;
};

}  // namespace morvend::imglib
