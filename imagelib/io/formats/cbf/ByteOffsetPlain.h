// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte-offset steps of one pixel, for the parts of a stream that don't fill a vector.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace morvend::imglib::byteoffset {

constexpr std::uint8_t Escape = 0x80;

/// Little-endian value at any address.
template <class T>
T valueAt(const std::uint8_t* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

/// A place in a stream and in its pixels. T is unsigned: sums wrap around.
template <class T>
struct Cursor {
    const std::uint8_t* in;
    const std::uint8_t* inEnd;
    T* out;
    T* outEnd;
    T value = 0;  ///< of the last pixel

    /// Takes a difference of Step bytes after `head` bytes of escape.
    template <class Step>
    void take(std::size_t head)
    {
        value = static_cast<T>(value + static_cast<T>(valueAt<Step>(in + head)));
        in += head + sizeof(Step);
        *out++ = value;
    }
};

/// Unpacks one pixel; false when the stream ends before it is complete. `out` is before its end.
template <class T>
bool unpackOne(Cursor<T>& at)
{
    const std::ptrdiff_t left = at.inEnd - at.in;
    if (left >= 1 && *at.in != Escape)
        at.template take<std::int8_t>(0);
    else if (left < 3)
        return false;
    else if (valueAt<std::uint16_t>(at.in + 1) != 0x8000)
        at.template take<std::int16_t>(1);
    else if (left < 7)
        return false;
    else if (valueAt<std::uint32_t>(at.in + 3) != 0x80000000)
        at.template take<std::int32_t>(3);
    else if (left < 15)
        return false;
    else
        at.template take<std::int64_t>(7);
    return true;
}

/// Unpacks from a difference of 4 or more bytes on, and the pixels around it: such differences come
/// in groups, at the rim of a spot or everywhere. False when the stream ends.
template <class T>
bool unpackWide(Cursor<T>& at)
{
    constexpr int Quiet = 8;  // pixels without an escape that end the group
    for (int left = Quiet; left > 0 && at.out < at.outEnd; --left) {
        if (at.in < at.inEnd && *at.in == Escape)
            left = Quiet;
        if (!unpackOne(at))
            return false;
    }
    return true;
}

template <class T>
void unpackRest(Cursor<T>& at)
{
    while (at.out < at.outEnd && unpackOne(at)) {
    }
}

/// Packs one difference, at most 15 bytes, and returns the place after it.
inline std::uint8_t* packOne(std::int64_t difference, std::uint8_t* out)
{
    const auto put = [&](auto value) {
        std::memcpy(out, &value, sizeof value);
        out += sizeof value;
    };
    if (difference >= -127 && difference <= 127) {
        put(static_cast<std::int8_t>(difference));
        return out;
    }
    put(Escape);
    if (difference >= -0x7fff && difference <= 0x7fff) {
        put(static_cast<std::int16_t>(difference));
        return out;
    }
    put(std::uint16_t(0x8000));
    if (difference >= -0x7fffffff && difference <= 0x7fffffff) {
        put(static_cast<std::int32_t>(difference));
        return out;
    }
    put(std::uint32_t(0x80000000));
    put(difference);
    return out;
}

}  // namespace morvend::imglib::byteoffset
