// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels of an image in less room.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace morvend::codec {

/// The pixels of an image that nobody looks at, by bit shuffle and LZ4, without its header. Made in
/// a few milliseconds a megapixel, unpacked in less than one. Immutable. Thread: any.
class PackedPixels {
public:
    /// Packs the pixels of an image.
    /// @returns null where they are few, or would hardly get smaller
    static std::shared_ptr<const PackedPixels> of(const imglib::MImage& image);

    /// Room that they take.
    std::size_t bytes() const { return _stored.size(); }
    /// The same pixels again, bit for bit, under an empty header.
    /// @throws MRuntimeException when memory is short
    imglib::MImage unpacked() const;

    /// Header, type and size of an image whose pixels are packed: cdata() is null.
    static imglib::MImage outline(const imglib::MImage& image);

    PackedPixels(const imglib::MImage& image, std::vector<std::byte> stored);

private:
    int _width;
    int _height;
    datatypes::Type _type;
    std::size_t _bits;
    std::vector<std::byte> _stored;
};

}  // namespace morvend::codec
