// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The form of the frames between processes; docs/protocols/queue.md specifies each byte.
#pragma once

#include "imagelib/display/MDrawingList.h"
#include "imagelib/image/MImage.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace morvend::imglib {

/// What travels between processes: a text, an image with its header, or a drawing list.
using Message = std::variant<std::string, MImage, MDrawingList<>>;

namespace wire {

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
inline constexpr std::uint8_t NotKept = 0xff;
/// Most file descriptors of one frame: those of an image and its mask.
inline constexpr std::uint32_t MostDescriptors = 2;
/// Padding after the pixels in a segment or file, for vector loops.
inline constexpr std::size_t Padding = 64;

/// Where the pixels of an image are.
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

/// The place of an array as its frame states it.
struct ArrayPlace {
    Place place = Place::Nowhere;
    std::uint8_t keep = NotKept;   // number under which the receiver keeps the array
    std::uint32_t number = 0;      // of the segment, or of the array kept
    std::int32_t descriptor = -1;  // index among the descriptors of the frame
    std::uint64_t offset = 0;      // of the first byte in the inline data, segment or file
};

/// Gives the pixels that a frame only names. Only the form of a request has been checked before.
/// @throws MRuntimeException for what does not exist
class ArraySource {
public:
    virtual ~ArraySource() = default;
    /// `bytes` bytes in a segment or a file of their own, with padding.
    virtual image::PixelBufferPtr outside(const ArrayPlace& place, std::size_t bytes) = 0;
    virtual image::MBasicImage<> kept(std::uint32_t number) = 0;
    virtual void keep(std::uint32_t number, const image::MBasicImage<>& pixels) = 0;
};

/// The first frame of each direction.
struct Hello {
    std::string name;           // of the queue; empty for a pair of sockets
    std::uint32_t process = 0;  // for messages to people
    bool leases = false;        // the frame brings a page for returned leases
};
/// The sender's segments with these numbers no longer exist.
struct Forget {
    std::vector<std::uint32_t> numbers;
};
using Frame = std::variant<Message, Hello, Forget>;

/// Reads the head of a frame. @throws MRuntimeException if it is invalid or its sizes are beyond
/// the limits
Head decodeHead(std::span<const std::byte> bytes);
std::array<std::byte, HeadBytes> encodeHead(const Head& head);

/// Decodes a whole frame: the bytes of head, description and inline data and no more. A pure
/// function of the bytes and of what `source` gives.
/// @throws MRuntimeException "Queue: ..." for anything that does not follow the protocol
Frame decodeFrame(std::span<const std::byte> frame, ArraySource& source);

/// A message in wire form, except for the places of its arrays, which depend on the
/// connection that it will use.
struct Parcel {
    struct Array {
        image::MBasicImage<> pixels;
        std::size_t at = 0;    // of its ArrayPlace in the description
        bool lasting = false;  // a mask, which later images may share
    };
    Kind kind = Kind::Text;
    std::vector<std::byte> meta;
    std::string text;  // of a text message
    std::vector<Array> arrays;
    std::uint64_t audience = 0;  // the one peer that may get it, 0 for any
};
/// @throws MBadParameterException for what the protocol can't carry
Parcel pack(Message message);
/// Writes the place of an array into the description.
void setPlace(Parcel& parcel, const Parcel::Array& array, const ArrayPlace& place);
/// Descriptions of the two frames that carry no message.
Parcel packHello(const Hello& hello);
Parcel packForget(const Forget& forget);

}  // namespace wire
}  // namespace morvend::imglib
