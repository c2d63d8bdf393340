// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The vector loops from intensities to colours.
#pragma once

#include "imagelib/display/ColorRule.h"

namespace morvend::imglib {

/// Colours `size` pixels. Nothing beyond them is read or written.
/// @param mask  null, or one value for each pixel
template <class T>
void colorPixels(const ColorRule<T>& rule, const T* pixels, const std::uint32_t* mask,
                 std::uint32_t* colors, std::size_t size);

}  // namespace morvend::imglib
