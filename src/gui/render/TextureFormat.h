// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How pixels of each type lie in a texture.
#pragma once

#include "gui/render/PixelKind.h"
#include "imagelib/image/Type.h"

#include <cstddef>

namespace render {

/// The storage of one texture, by the names that OpenGL takes, and whether pixels go there as they
/// stand in memory.
///
/// 8- and 16-bit integers stay as narrow as they are: a shader reads the same values from them, and
/// a texture of half the size is uploaded in half the time. Of masks the low byte says all that is
/// shown. Only 64-bit types and wider masks are converted.
struct TextureFormat {
    int internalFormat;
    unsigned int format;
    unsigned int type;
    std::size_t bytes;  ///< of one pixel
    bool direct;        ///< the pixels of the image are those of the texture

    bool operator==(const TextureFormat&) const = default;

    /// Of images of a pixel type, one of the twelve; their shaders are those of kindOf().
    static TextureFormat ofImage(morvend::datatypes::Type type, std::size_t bits);
    /// Of masks, which shaders read as unsigned integers of their low byte.
    static TextureFormat ofMask(morvend::datatypes::Type type, std::size_t bits);
};

/// The kind that an image of a pixel type is shown as.
PixelKind kindOf(morvend::datatypes::Type type);

}  // namespace render
