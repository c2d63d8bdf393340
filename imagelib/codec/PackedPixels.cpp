// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels of an image in less room.
#include "imagelib/codec/PackedPixels.h"

#include "imagelib/codec/Bitshuffle.h"

#include <algorithm>
#include <span>
#include <thread>
#include <utility>

namespace morvend::codec {

namespace {

/// Fewer bytes are not worth the trouble.
constexpr std::size_t fewBytes = std::size_t(64) << 10;

}  // namespace

std::shared_ptr<const PackedPixels> PackedPixels::of(const imglib::MImage& image)
{
    const std::size_t size = image.dataSize();
    if (size < fewBytes)
        return nullptr;
    auto stored = bitshuffleEncode({static_cast<const std::byte*>(image.cdata()), size},
                                   image.typeBits() / 8);
    if (stored.size() > size / 4 * 3)
        return nullptr;
    return std::make_shared<const PackedPixels>(image, std::move(stored));
}

PackedPixels::PackedPixels(const imglib::MImage& image, std::vector<std::byte> stored)
    : _width(image.width())
    , _height(image.height())
    , _type(image.type())
    , _bits(image.typeBits())
    , _stored(std::move(stored))
{
    _stored.shrink_to_fit();
}

imglib::MImage PackedPixels::unpacked() const
{
    imglib::MImage image(_width, _height, _type, _bits);
    bitshuffleDecode(_stored, _bits / 8, BlockPacking::Lz4, 0,
                     {static_cast<std::byte*>(image.data()), image.dataSize()},
                     std::max(1U, std::thread::hardware_concurrency()));
    return image;
}

imglib::MImage PackedPixels::outline(const imglib::MImage& image)
{
    const auto& pixels = image.imageData();
    imglib::MImage outline(image.width(), image.height(),
                           {nullptr, pixels.type(), pixels.typeBits(), pixels.size()});
    outline.setOptionalData(image.optionalData());
    return outline;
}

}  // namespace morvend::codec
