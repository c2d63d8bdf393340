// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Constant orders of lanes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace laneorders {

/// For each word of Lanes bits: the lanes whose bit is set, then the others, each as the indices of
/// its Words words of 4 bytes.
template <std::size_t Lanes, std::size_t Words>
alignas(64) inline constexpr auto SetFirst = [] {
    std::array<std::array<std::uint8_t, Lanes * Words>, std::size_t(1) << Lanes> table{};
    for (std::size_t bits = 0; bits < table.size(); ++bits) {
        std::size_t at = 0;
        for (const std::size_t wanted : {std::size_t(1), std::size_t(0)})
            for (std::size_t lane = 0; lane < Lanes; ++lane)
                for (std::size_t word = 0; (bits >> lane & 1) == wanted && word < Words; ++word)
                    table[bits][at++] = static_cast<std::uint8_t>(lane * Words + word);
    }
    return table;
}();

/// From element 16 - n on: the order that moves lane 0 of 16 to lane n, cyclically.
alignas(64) inline constexpr auto Rotation = [] {
    std::array<std::uint32_t, 32> order{};
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<std::uint32_t>(i % 16);
    return order;
}();

}  // namespace laneorders
