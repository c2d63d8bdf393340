// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writes messages to a socket, as far as the socket takes them.
#pragma once

#include "imagelib/ipc/ArraySender.h"
#include "imagelib/ipc/WireFormat.h"

#include <deque>
#include <optional>
#include <span>

namespace morvend::imglib {

/// The sending half of a connection. Thread: one at a time.
class FrameWriter {
public:
    /// Does not own the socket. The hello is the first frame.
    FrameWriter(int socket, std::shared_ptr<SegmentPool> pool, const std::string& name);

    void enqueue(wire::Parcel parcel) { _waiting.push_back(std::move(parcel)); }
    bool idle() const { return _waiting.empty(); }
    std::size_t waiting() const { return _waiting.size(); }
    /// Writes until nothing is left (true) or nothing more can be written now (false).
    /// @throws MPeerGoneException, and MRuntimeException for an image that gets no shared
    /// memory: that image is dropped
    bool flush();
    /// True if the peer must read before more is written, though the socket may have room: too many
    /// bytes of unread images are in shared memory.
    bool stalled();

    /// The messages that are not completely written.
    std::deque<wire::Parcel> takeUnsent();

private:
    struct Current;
    void start();
    std::size_t placeArrays(wire::Parcel& parcel, Current& current);
    bool writeSome();

    struct Current {
        std::array<std::byte, wire::HeadBytes> head{};
        std::vector<std::span<const std::byte>> inlined;  // pixels of the parcel
        ArraySender::Descriptors descriptors;
        std::size_t written = 0;
        std::size_t size = 0;
    };
    struct Unread {
        std::uint64_t frame = 0;
        std::size_t bytes = 0;
    };
    const int _socket;
    ArraySender _arrays;
    std::deque<wire::Parcel> _waiting;  // the current one first
    std::optional<Current> _current;
    std::uint64_t _frames = 0;   // begun
    std::deque<Unread> _unread;  // images that the peer may not have taken yet
    std::size_t _unreadBytes = 0;
    bool _refused = false;  // by the system, although the socket may have room
};

}  // namespace morvend::imglib
