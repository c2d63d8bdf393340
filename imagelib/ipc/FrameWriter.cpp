// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// sendmsg with descriptors, in as many pieces as the socket wants.
#include "imagelib/ipc/FrameWriter.h"

#include "imagelib/image/Assert.h"
#include "imagelib/image/MException.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <sys/socket.h>
#include <sys/uio.h>

namespace morvend::imglib {

namespace {

/// More unread bytes than this in shared memory hold up the images that follow.
constexpr std::size_t MostUnreadBytes = std::size_t(512) << 20;

std::size_t bytesOf(const image::MBasicImage<>& pixels)
{
    return pixels.size() * (pixels.typeBits() / 8);
}

std::size_t pixelBytes(const wire::Parcel& parcel)
{
    std::size_t bytes = 0;
    for (const auto& array : parcel.arrays)
        bytes += bytesOf(array.pixels);
    return bytes;
}

}  // namespace

FrameWriter::FrameWriter(int socket, std::shared_ptr<SegmentPool> pool, const std::string& name)
    : _socket(socket)
    , _arrays(std::move(pool))
{
    wire::Hello hello;
    hello.name = name;
    hello.process = static_cast<std::uint32_t>(::getpid());
    _waiting.push_back(wire::packHello(hello));
}

bool FrameWriter::stalled()
{
    if (_unread.empty())
        return _refused;
    const std::uint64_t taken = _arrays.book().taken();
    while (!_unread.empty() && _unread.front().frame < taken) {
        _unreadBytes -= _unread.front().bytes;
        _unread.pop_front();
    }
    return _refused || _unreadBytes > MostUnreadBytes;
}

bool FrameWriter::flush()
{
    _refused = false;
    while (!_waiting.empty()) {
        if (!_current) {
            if (stalled())
                return false;
            start();
        }
        if (!writeSome())
            return false;
        if (_current->written == _current->size) {
            _current.reset();
            _waiting.pop_front();
        }
    }
    return true;
}

/// Makes a frame of the first waiting parcel.
void FrameWriter::start()
{
    if (_waiting.front().kind == wire::Kind::Image) {
        const auto forgotten = _arrays.takeForgotten();
        if (!forgotten.empty())
            _waiting.push_front(wire::packForget({forgotten}));
    }
    wire::Parcel& parcel = _waiting.front();
    Current current;
    if (parcel.kind == wire::Kind::Hello)
        current.descriptors.all.push_back(_arrays.book().file().get());
    wire::Head head;
    try {
        head.bulkBytes = placeArrays(parcel, current);
    } catch (const MException&) {
        _waiting.pop_front();
        throw;
    }
    head.kind = parcel.kind;
    head.descriptors = static_cast<std::uint32_t>(current.descriptors.all.size());
    head.metaBytes = static_cast<std::uint32_t>(parcel.meta.size());
    head.number = _frames++;
    current.head = wire::encodeHead(head);
    current.size = head.frameBytes();
    if (const std::size_t bytes = pixelBytes(parcel); bytes >= SegmentPool::SmallestBytes) {
        _unread.push_back({head.number, bytes});
        _unreadBytes += bytes;
    }
    _current = std::move(current);
}

/// Finds a place for each array of a frame. Returns the size of its inline data.
std::size_t FrameWriter::placeArrays(wire::Parcel& parcel, Current& current)
{
    std::size_t bulk = parcel.text.size();
    std::vector<wire::ArrayPlace> places;
    try {
        for (const auto& array : parcel.arrays) {
            places.push_back(_arrays.place(array, bulk, current.descriptors));
            wire::setPlace(parcel, array, places.back());
            if (places.back().place != wire::Place::Inline)
                continue;
            current.inlined.emplace_back(static_cast<const std::byte*>(array.pixels.cdata()),
                                         bytesOf(array.pixels));
            bulk += bytesOf(array.pixels);
        }
    } catch (const MException&) {
        for (const wire::ArrayPlace& place : places)
            _arrays.undo(place);
        throw;
    }
    return bulk;
}

/// Writes what is left of the current frame; false when the socket takes nothing now.
bool FrameWriter::writeSome()
{
    std::array<iovec, 5> pieces;
    std::size_t used = 0;
    std::size_t skip = _current->written;
    const auto add = [&](std::span<const std::byte> part) {
        const std::size_t skipped = std::min(skip, part.size());
        skip -= skipped;
        if (part.size() > skipped)
            pieces[used++] = {const_cast<std::byte*>(part.data() + skipped), part.size() - skipped};
    };
    const wire::Parcel& parcel = _waiting.front();
    add(_current->head);
    add(parcel.meta);
    add(std::as_bytes(std::span(parcel.text)));
    for (const auto part : _current->inlined)
        add(part);
    msghdr message{};
    message.msg_iov = pieces.data();
    message.msg_iovlen = used;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * wire::MostDescriptors)> control{};
    const auto& descriptors = _current->descriptors.all;
    if (_current->written == 0 && !descriptors.empty()) {
        assert(descriptors.size() <= wire::MostDescriptors);
        message.msg_control = control.data();
        message.msg_controllen = CMSG_SPACE(sizeof(int) * descriptors.size());
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int) * descriptors.size());
        std::memcpy(CMSG_DATA(header), descriptors.data(), sizeof(int) * descriptors.size());
    }
    const ssize_t sent = ::sendmsg(_socket, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) {
        if (errno == EINTR)
            return true;
        // Too many descriptors under way: the peer has to take some out of its socket first.
        _refused = errno == ETOOMANYREFS || errno == ENOBUFS || errno == ENOMEM;
        if (_refused || errno == EAGAIN || errno == EWOULDBLOCK)
            return false;
        throw MPeerGoneException("Queue: the peer has gone: " +
                                 std::generic_category().message(errno));
    }
    _current->written += static_cast<std::size_t>(sent);
    return true;
}

std::deque<wire::Parcel> FrameWriter::takeUnsent()
{
    _current.reset();
    std::deque<wire::Parcel> unsent = std::exchange(_waiting, {});
    std::erase_if(unsent, [](const wire::Parcel& parcel) {
        return parcel.kind == wire::Kind::Hello || parcel.kind == wire::Kind::Forget;
    });
    return unsent;
}

}  // namespace morvend::imglib
