// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The form of the frames between processes; docs/protocols/queue.md tells each byte.
#pragma once

#include "imagelib/ipc/Message.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace morvend::imglib::wire {

enum class Kind : std::uint16_t { Hello = 1, Text = 2, Image = 3, DrawingList = 4, Forget = 5 };

inline constexpr std::uint16_t Version = 1;
inline constexpr std::size_t HeadBytes = 32;
/// Most bytes of the description of a message, and of its inline data.
inline constexpr std::size_t MostMeta = std::size_t(64) << 20;
inline constexpr std::size_t MostBulk = std::size_t(64) << 20;
/// Segments are numbered below this.
inline constexpr std::uint32_t MostSegments = 1024;
/// Arrays that a receiver keeps for later messages are numbered below this.
inline constexpr std::uint8_t MostKept = 8;
/// Most file descriptors of one frame: two for each of an image and its mask at worst.
inline constexpr std::uint32_t MostDescriptors = 4;

/// Where the pixels of an image lie.
enum class Place : std::uint8_t { Nowhere = 0, Inline = 1, Segment = 2, OwnFile = 3, Kept = 4 };

/// The first bytes of each frame.
struct Head {
    Kind kind = Kind::Text;
    std::uint32_t descriptors = 0;  // that come with the frame's first byte
    std::uint32_t metaBytes = 0;
    std::uint64_t bulkBytes = 0;
    std::uint64_t number = 0;  // of the frame on its connection, from 0

    std::size_t frameBytes() const { return HeadBytes + metaBytes + std::size_t(bulkBytes); }
};

/// The place of an array outside its frame, as the frame says it.
struct ArrayPlace {
    Place place = Place::Nowhere;
    std::uint32_t number = 0;      // of the segment, or of the array kept
    std::int32_t descriptor = -1;  // index among the descriptors of the frame
    std::uint64_t offset = 0;      // of the first byte in the segment or file
    std::uint64_t bytes = 0;
};

/// Gives the pixels that a frame only names. Whatever it is asked for has been checked for form
/// alone. @throws MRuntimeException for what it does not have
class ArraySource {
public:
    virtual ~ArraySource() = default;
    /// A buffer of at least place.bytes for pixels in a segment or a file of their own.
    virtual image::PixelBufferPtr outside(const ArrayPlace& place) = 0;
    virtual image::MBasicImage<> kept(std::uint8_t number) = 0;
    virtual void keep(std::uint8_t number, const image::MBasicImage<>& pixels) = 0;
};

/// Reads the head of a frame. @throws MRuntimeException when it is none, or its sizes are beyond
/// the limits
Head decodeHead(std::span<const std::byte> bytes);

/// Decodes a whole frame of a message: the bytes of head, description and inline data and no more.
/// A pure function of the bytes and of what `source` gives.
/// @throws MRuntimeException "Queue: ..." for anything that does not follow the protocol
Message decodeMessage(std::span<const std::byte> frame, ArraySource& source);

}  // namespace morvend::imglib::wire
