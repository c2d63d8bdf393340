// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Little-endian numbers and texts, written to and read from bytes that may be damaged.
#pragma once

#include "imagelib/image/MException.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvend::imglib::wire {

static_assert(std::endian::native == std::endian::little,
              "pixels cross in the byte order of the machine, which the protocol calls little");

/// Ends a connection: the received bytes break the protocol.
[[noreturn]] inline void malformed(const std::string& reason)
{
    throw MRuntimeException("Queue: " + reason);
}

/// Appends to a vector of bytes.
class ByteWriter {
public:
    template <class T>
    requires std::integral<T> || std::floating_point<T>
    void put(T value)
    {
        const std::size_t at = _bytes.size();
        _bytes.resize(at + sizeof(T));
        std::memcpy(_bytes.data() + at, &value, sizeof(T));
    }
    /// The bytes alone.
    void raw(std::string_view bytes)
    {
        const auto* begin = reinterpret_cast<const std::byte*>(bytes.data());
        _bytes.insert(_bytes.end(), begin, begin + bytes.size());
    }
    /// A length of 32 bits and the bytes.
    void text(std::string_view text)
    {
        put(static_cast<std::uint32_t>(text.size()));
        raw(text);
    }

    std::size_t size() const { return _bytes.size(); }
    std::vector<std::byte> take() { return std::move(_bytes); }

private:
    std::vector<std::byte> _bytes;
};

/// Takes values from the front of a row of bytes. @throws MRuntimeException when they end early
class ByteReader {
public:
    explicit ByteReader(std::span<const std::byte> bytes)
        : _bytes(bytes)
    {}

    template <class T>
    requires std::integral<T> || std::floating_point<T> T get()
    {
        T value;
        std::memcpy(&value, take(sizeof(T)).data(), sizeof(T));
        return value;
    }
    std::string text() { return raw(get<std::uint32_t>()); }
    std::string raw(std::size_t size)
    {
        const auto bytes = take(size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    std::span<const std::byte> take(std::size_t size)
    {
        if (size > _bytes.size())
            malformed("a message ends early: " + std::to_string(size) + " bytes wanted, " +
                      std::to_string(_bytes.size()) + " left");
        const auto front = _bytes.first(size);
        _bytes = _bytes.subspan(size);
        return front;
    }
    /// A number of items of at least `least` bytes each, all of which must be present.
    std::uint32_t count(std::size_t least)
    {
        const auto items = get<std::uint32_t>();
        if (items > _bytes.size() / least)
            malformed(std::to_string(items) + " items are announced in " +
                      std::to_string(_bytes.size()) + " bytes");
        return items;
    }
    void expectEnd() const
    {
        if (!_bytes.empty())
            malformed(std::to_string(_bytes.size()) + " bytes too many in a message");
    }

private:
    std::span<const std::byte> _bytes;
};

}  // namespace morvend::imglib::wire
