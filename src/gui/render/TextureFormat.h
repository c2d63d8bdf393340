// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// How pixels of each type are stored in a texture.
#pragma once

#include "gui/render/PixelKind.h"
#include "imagelib/image/Type.h"

#include <cstddef>

namespace render {

/// The storage of one texture, by OpenGL's names, and whether pixels are uploaded as they
/// are in memory.
///
/// 8- and 16-bit integers stay as narrow as they are: a shader reads the same values from them, and
/// a texture of half the size is uploaded in half the time. The low byte of a mask holds all that
/// is shown. Only 64-bit types and wider masks are converted.
struct TextureFormat {
    int internalFormat;
    unsigned int format;
    unsigned int type;
    std::size_t bytes;  ///< of one pixel
    bool direct;        ///< the pixels are uploaded without conversion

    bool operator==(const TextureFormat&) const = default;

    /// Of images of a pixel type, one of the twelve; their shaders are those of kindOf().
    static TextureFormat ofImage(morvend::datatypes::Type type, std::size_t bits);
    /// Of masks, which shaders read as unsigned integers of their low byte.
    static TextureFormat ofMask(morvend::datatypes::Type type, std::size_t bits);
};

/// The kind as which an image of a pixel type is shown.
PixelKind kindOf(morvend::datatypes::Type type);

}  // namespace render
