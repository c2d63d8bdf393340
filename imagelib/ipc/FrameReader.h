// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reads messages from a socket whose other end is not trusted.
#pragma once

#include "imagelib/ipc/ArrayReceiver.h"
#include "imagelib/ipc/WireFormat.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace morvend::imglib {

/// The receiving half of a connection. Thread: one at a time.
class FrameReader {
public:
    /// Does not own the socket. The peer's hello must give the same name.
    FrameReader(int socket, std::string name);

    /// The next message that is available without waiting, if any.
    /// @throws MPeerGoneException after the last one, MRuntimeException for a breach of the
    /// protocol
    std::optional<Message> poll();
    /// A message that was read from the socket earlier.
    std::optional<Message> buffered();
    /// Reads no further than the hello; true when that has come. Throws as poll().
    bool greet();

private:
    bool fill();
    std::optional<wire::Frame> nextFrame();
    std::optional<Message> take(wire::Frame frame);
    void makeRoom(std::size_t wanted);

    const int _socket;
    const std::string _name;
    ArrayReceiver _arrays;
    bool _greeted = false;
    std::uint64_t _frames = 0;  // taken

    std::unique_ptr<std::byte[]> _buffer;
    std::size_t _capacity = 0;
    std::size_t _begin = 0;
    std::size_t _end = 0;
    std::deque<UniqueFd> _descriptors;  // received, not yet claimed by a frame
};

}  // namespace morvend::imglib
