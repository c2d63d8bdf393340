// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Byte patterns that codecs meet: noise, sparse counts, counts among gaps of all ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace tarvik::tests {

using Bytes = std::vector<std::byte>;

enum class Pattern { Noise, Sparse, Gaps };

constexpr Pattern Patterns[] = {Pattern::Noise, Pattern::Sparse, Pattern::Gaps};

/// `count` elements; in Sparse and Gaps only their lowest byte is noisy.
inline Bytes makeElements(Pattern pattern, std::size_t count, std::size_t elementSize)
{
    std::mt19937 random(static_cast<unsigned>(count * 31 + elementSize));
    Bytes bytes(count * elementSize);
    const std::size_t gap = count > 2100 ? 700 : 70;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t element = i / elementSize;
        if (pattern == Pattern::Noise)
            bytes[i] = static_cast<std::byte>(random() & 0xff);
        else if (pattern == Pattern::Gaps && element / gap % 3 == 1)
            bytes[i] = std::byte(0xff);
        else if (i % elementSize == 0 && random() % 4 == 0)
            bytes[i] = static_cast<std::byte>(random() % 12);
    }
    return bytes;
}

}  // namespace tarvik::tests
