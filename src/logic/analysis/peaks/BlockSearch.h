// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The first pass of the peak search: finds the blocks that deserve a second look.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace peaks {

/// Pixels that one decision covers.
constexpr std::size_t BlockSize = 128;

/// The type that a pixel's bytes are compared as.
template <class L>
using Lane = std::conditional_t<
    std::is_floating_point_v<L>, L,
    std::conditional_t<
        sizeof(L) == 1, std::conditional_t<std::is_signed_v<L>, std::int8_t, std::uint8_t>,
        std::conditional_t<
            sizeof(L) == 2, std::conditional_t<std::is_signed_v<L>, std::int16_t, std::uint16_t>,
            std::conditional_t<
                sizeof(L) == 4,
                std::conditional_t<std::is_signed_v<L>, std::int32_t, std::uint32_t>,
                std::conditional_t<std::is_signed_v<L>, std::int64_t, std::uint64_t>>>>>;

/// Start of the first block, from `begin` on in steps of BlockSize, that has a pixel at or above
/// the bound; `size` if there is none. NaN is never at or above.
template <class T>
std::size_t nextBlock(const T* pixels, std::size_t begin, std::size_t size, T bound);

}  // namespace peaks
