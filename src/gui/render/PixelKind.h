// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The three pixel types that views show.
#pragma once

namespace render {

/// Pixel type of a display image: all twelve types of an image file become one of these.
enum class PixelKind {
    Int,   ///< 32-bit signed
    UInt,  ///< 32-bit unsigned
    Float  ///< 32-bit float
};

}  // namespace render
