// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bytes of one run: parameters first, then the data to decode.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarvik::fuzz {

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : _bytes(reinterpret_cast<const std::byte*>(data), size)
    {}

    bool empty() const { return _bytes.empty(); }
    /// The next byte; 0 when none is left.
    unsigned byte()
    {
        if (_bytes.empty())
            return 0;
        const auto value = std::to_integer<unsigned>(_bytes.front());
        _bytes = _bytes.subspan(1);
        return value;
    }
    /// A number from the next two bytes, the low one first.
    unsigned word()
    {
        const unsigned low = byte();
        return low | byte() << 8;
    }
    /// What is left, in memory of exactly that size: the sanitizer sees each byte read beyond it.
    std::vector<std::byte> rest() const { return {_bytes.begin(), _bytes.end()}; }

private:
    std::span<const std::byte> _bytes;
};

}  // namespace tarvik::fuzz
