// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Bits of a byte stream, the lowest bit of each byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace morvend::imglib {

class BitReader {
public:
    explicit BitReader(std::span<const std::byte> bytes)
        : _bytes(bytes)
    {}

    /// Takes `count` bits (0 to 57). False, and nothing taken, if fewer are left.
    bool take(unsigned count, std::uint64_t& value)
    {
        while (_waiting < count) {
            if (_at == _bytes.size())
                return false;
            _bits |= std::to_integer<std::uint64_t>(_bytes[_at++]) << _waiting;
            _waiting += 8;
        }
        value = _bits & ((std::uint64_t(1) << count) - 1);
        _bits >>= count;
        _waiting -= count;
        return true;
    }

    /// Takes a number in two's complement of `count` bits (0 to 65), of which 64 are kept.
    bool takeSigned(unsigned count, std::int64_t& value)
    {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        std::uint64_t surplus = 0;
        const unsigned lowBits = count < 32 ? count : 32;
        const unsigned highBits = count < 64 ? count - lowBits : 32;
        if (!take(lowBits, low) || !take(highBits, high) ||
            !take(count - lowBits - highBits, surplus))
            return false;
        const unsigned unused = 64 - lowBits - highBits;
        const std::uint64_t bits = high << 32 | low;
        value = unused == 64 ? 0 : static_cast<std::int64_t>(bits << unused) >> unused;
        return true;
    }

private:
    std::span<const std::byte> _bytes;
    std::size_t _at = 0;
    std::uint64_t _bits = 0;
    unsigned _waiting = 0;  // bits in _bits
};

}  // namespace morvend::imglib
