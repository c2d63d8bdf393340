// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which pixels a mask excludes.
#pragma once

#include <type_traits>

namespace maskrule {

/// A pixel with one of these bits is excluded from statistics and contrast.
constexpr unsigned int Excluding = 31;
/// A pixel with one of these bits counts as defective; transferfunction.glsl names them too.
constexpr unsigned int Defective = 30;

/// The bits of a mask pixel that decide about a pixel.
template <class M>
constexpr unsigned int bits(M mask)
{
    if constexpr (std::is_same_v<M, bool>)
        return mask ? 1U : 0U;
    else if constexpr (std::is_floating_point_v<M>)
        return mask == M(0) ? 0U : 1U;
    else if constexpr (std::is_signed_v<M>)
        // The magnitude; unsigned, since that of the smallest value fits no signed type.
        return static_cast<unsigned int>(mask < 0 ? 0ULL - static_cast<unsigned long long>(mask)
                                                  : static_cast<unsigned long long>(mask));
    else
        return static_cast<unsigned int>(mask);
}

/// True if a pixel takes part in statistics.
template <class M>
constexpr bool good(M mask)
{
    return (bits(mask) & Excluding) == 0;
}

/// True if a pixel that is not good counts as defective.
template <class M>
constexpr bool defective(M mask)
{
    return (bits(mask) & Defective) != 0;
}

}  // namespace maskrule
