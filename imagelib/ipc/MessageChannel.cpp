// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A blocking interface over a frame writer and a frame reader.
#include "imagelib/ipc/MessageChannel.h"

#include "imagelib/ipc/FrameReader.h"
#include "imagelib/ipc/FrameWriter.h"
#include "imagelib/ipc/SocketWait.h"

#include <cerrno>
#include <system_error>

#include <sys/socket.h>

namespace morvend::imglib {

struct MessageChannel::Private {
    Private(UniqueFd socket_, std::shared_ptr<SegmentPool> pool, const std::string& name)
        : socket(std::move(socket_))
        , writer(socket.get(), std::move(pool), name)
        , reader(socket.get(), name)
    {}

    /// Runs a step of the reader; a malformed frame ends the connection.
    template <class Step>
    auto read(Step step)
    {
        try {
            return step();
        } catch (const MPeerGoneException&) {
            throw;
        } catch (const MException&) {
            ::shutdown(socket.get(), SHUT_RDWR);
            throw;
        }
    }

    /// Writes all that waits; blocks while the socket is full.
    void drain(const Deadline& deadline)
    {
        while (!writer.flush()) {
            // The socket doesn't signal what the peer has to do first, so it is polled.
            const bool stalled = writer.stalled();
            if (!waitFor(socket.get(), stalled ? 0 : POLLOUT,
                         stalled ? deadline.sooner(std::chrono::milliseconds(1)) : deadline) &&
                deadline.passed())
                throw MTimeoutException("Queue: the peer takes no message");
        }
    }

    const UniqueFd socket;
    FrameWriter writer;
    FrameReader reader;
};

MessageChannel::MessageChannel(UniqueFd socket, std::shared_ptr<SegmentPool> pool, std::string name)
    : _d(std::make_unique<Private>(std::move(socket), std::move(pool), name))
{
    try {
        _d->writer.flush();  // the hello
    } catch (const MPeerGoneException&) {
        // The first receive reports it, after what the peer may have left.
    }
}

MessageChannel::~MessageChannel() = default;

std::pair<UniqueFd, UniqueFd> MessageChannel::socketPair()
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw MRuntimeException("Queue: no pair of sockets: " +
                                std::generic_category().message(errno));
    return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

void MessageChannel::send(const Message& message, std::chrono::milliseconds timeout)
{
    enqueue(message);
    _d->drain(Deadline(timeout));
}

void MessageChannel::sendBoth(Message first, Message second)
{
    wire::Parcel parcel = wire::pack(std::move(first));
    wire::Parcel next = wire::pack(std::move(second));
    _d->writer.enqueue(std::move(parcel));
    _d->writer.enqueue(std::move(next));
    _d->drain(Deadline(Forever));
}

Message MessageChannel::receive(std::chrono::milliseconds timeout)
{
    const Deadline deadline(timeout);
    for (;;) {
        if (auto message = poll())
            return std::move(*message);
        if (!waitFor(_d->socket.get(), POLLIN, deadline) && deadline.passed())
            throw MTimeoutException("Queue: no message came in time");
    }
}

void MessageChannel::enqueue(Message message)
{
    _d->writer.enqueue(wire::pack(std::move(message)));
}

bool MessageChannel::flush() { return _d->writer.flush(); }

std::optional<Message> MessageChannel::poll()
{
    return _d->read([this] { return _d->reader.poll(); });
}

int MessageChannel::fd() const { return _d->socket.get(); }

void MessageChannel::shutdown() { ::shutdown(_d->socket.get(), SHUT_RDWR); }

}  // namespace morvend::imglib
