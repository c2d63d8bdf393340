// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// recvmsg with descriptors, and frames out of the stream.
#include "imagelib/ipc/FrameReader.h"

#include "imagelib/image/MException.h"
#include "imagelib/ipc/WireBytes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <sys/socket.h>
#include <sys/uio.h>

namespace morvend::imglib {

namespace {

constexpr std::size_t UsualCapacity = std::size_t(64) << 10;
constexpr std::size_t MostPendingDescriptors = 64;

/// Takes over the descriptors that came with a piece of the stream.
void collect(msghdr& message, std::deque<UniqueFd>& descriptors)
{
    for (cmsghdr* header = CMSG_FIRSTHDR(&message); header;
         header = CMSG_NXTHDR(&message, header)) {
        if (header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS)
            continue;
        const std::size_t count = (header->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int fd = -1;
            std::memcpy(&fd, CMSG_DATA(header) + i * sizeof(int), sizeof(int));
            descriptors.emplace_back(fd);
        }
    }
}

}  // namespace

FrameReader::FrameReader(int socket, std::string name)
    : _socket(socket)
    , _name(std::move(name))
{}

std::optional<Message> FrameReader::poll()
{
    for (;;) {
        if (auto message = buffered())
            return message;
        if (!fill())
            return std::nullopt;
    }
}

std::optional<Message> FrameReader::buffered()
{
    while (auto frame = nextFrame())
        if (auto message = take(std::move(*frame)))
            return message;
    return std::nullopt;
}

bool FrameReader::greet()
{
    while (!_greeted) {
        if (auto frame = nextFrame())
            take(std::move(*frame));
        else if (!fill())
            return false;
    }
    return true;
}

/// Decodes the frame at the front of the buffer when all of it is there.
std::optional<wire::Frame> FrameReader::nextFrame()
{
    const std::span<const std::byte> have(_buffer.get() + _begin, _end - _begin);
    if (have.size() < wire::HeadBytes)
        return std::nullopt;
    const wire::Head head = wire::decodeHead(have);
    if (head.number != _frames)
        wire::malformed("the frame " + std::to_string(head.number) + " comes where the frame " +
                        std::to_string(_frames) + " is due");
    if ((head.kind == wire::Kind::Hello) != (_frames == 0))
        wire::malformed("the hello must be the first frame and no other one");
    if (have.size() < head.frameBytes())
        return std::nullopt;
    if (head.descriptors > _descriptors.size())
        wire::malformed("a frame without the descriptors that it announces");
    std::vector<UniqueFd> descriptors;
    for (std::uint32_t i = 0; i < head.descriptors; ++i) {
        descriptors.push_back(std::move(_descriptors.front()));
        _descriptors.pop_front();
    }
    if (head.kind == wire::Kind::Hello && !descriptors.empty())
        _arrays.setReturns(descriptors.front());
    _arrays.setDescriptors(std::move(descriptors));
    wire::Frame frame = wire::decodeFrame(have.first(head.frameBytes()), _arrays);
    _arrays.setDescriptors({});
    _begin += head.frameBytes();
    _arrays.taken(++_frames);
    return frame;
}

/// Handles the messages meant for this layer only.
std::optional<Message> FrameReader::take(wire::Frame frame)
{
    if (auto* message = std::get_if<Message>(&frame))
        return std::move(*message);
    if (const auto* hello = std::get_if<wire::Hello>(&frame)) {
        if (hello->name != _name)
            wire::malformed("the process " + std::to_string(hello->process) + " asks for \"" +
                            hello->name.substr(0, 80) + "\"");
        _greeted = true;
    } else {
        _arrays.forget(std::get<wire::Forget>(frame));
    }
    return std::nullopt;
}

/// Makes room after the received bytes for the rest of the frame that they begin.
/// Grows step by step, since a size that a frame claims costs memory only as it arrives.
void FrameReader::makeRoom(std::size_t wanted)
{
    const std::size_t have = _end - _begin;
    if (have == 0)
        _begin = _end = 0;
    const std::size_t steps = std::max(UsualCapacity, 2 * have);
    const std::size_t needed = std::max(UsualCapacity, std::min(wanted, steps));
    const bool outgrown = have == 0 && _capacity > 16 * UsualCapacity;
    if (_capacity >= needed && !outgrown && (_begin == 0 || _capacity - _end >= _capacity / 2))
        return;
    if (_capacity >= needed && !outgrown) {
        std::memmove(_buffer.get(), _buffer.get() + _begin, have);
    } else {
        auto another = std::make_unique_for_overwrite<std::byte[]>(needed);
        if (have)
            std::memcpy(another.get(), _buffer.get() + _begin, have);
        _buffer = std::move(another);
        _capacity = needed;
    }
    _begin = 0;
    _end = have;
}

/// Reads once from the socket; false when nothing is there now.
bool FrameReader::fill()
{
    const std::span<const std::byte> have(_buffer.get() + _begin, _end - _begin);
    makeRoom(have.size() < wire::HeadBytes ? UsualCapacity : wire::decodeHead(have).frameBytes());
    iovec piece{_buffer.get() + _end, _capacity - _end};
    // The most descriptors that a system sends at once, so that none is lost unnoticed.
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * 253)> control;
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t got = ::recvmsg(_socket, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (got < 0) {
        if (errno == EINTR)
            return true;
        if (errno == EAGAIN || errno == EWOULDBLOCK)
            return false;
        throw MPeerGoneException("Queue: the peer has gone: " +
                                 std::generic_category().message(errno));
    }
    collect(message, _descriptors);
    if (got == 0)
        throw MPeerGoneException("Queue: the peer has gone");
    if (message.msg_flags & MSG_CTRUNC)
        wire::malformed("descriptors that can't be taken: too many files are open");
    if (_descriptors.size() > MostPendingDescriptors)
        wire::malformed("descriptors that no frame announces");
    _end += static_cast<std::size_t>(got);
    return true;
}

}  // namespace morvend::imglib
