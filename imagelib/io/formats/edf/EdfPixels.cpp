// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Binary block to image.
#include "imagelib/io/formats/edf/EdfPixels.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "imagelib/io/formats/edf/EdfLayout.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace morvend::imglib::edf {

namespace {

/// The available bytes of a binary block.
struct Range {
    std::shared_ptr<const ByteSource> external;  // keeps the file below open; null: the EDF itself
    const ByteSource& file;
    std::uint64_t begin;
    std::uint64_t bytes;
};

std::string beside(const std::string& path, const std::string& name)
{
    return path.substr(0, path.rfind('/') + 1) + name;  // npos + 1 is 0: the current folder
}

Range dataRange(const ByteSource& source, const EdfBlock& block, const EdfLayout& layout)
{
    std::uint64_t begin = block.data;
    std::uint64_t bytes = block.dataBytes;
    std::shared_ptr<const ByteSource> external;
    if (!layout.externalFile.empty()) {
        external = ByteSource::open(beside(source.path(), layout.externalFile));
        begin = layout.externalOffset;
        bytes = layout.statedBytes.value_or(std::uint64_t(-1));
        if (layout.packing == Packing::None)
            bytes = std::max(bytes, layout.planeBytes() * layout.planes);
    }
    const ByteSource& file = external ? *external : source;
    const std::uint64_t size = file.size();
    bytes = std::min(bytes, size > begin ? size - begin : 0);
    return {std::move(external), file, begin, bytes};
}

[[noreturn]] void endsEarly(std::size_t frame, std::uint64_t got, std::uint64_t of,
                            const std::string& path)
{
    throw MRuntimeException("EDF: pixel data of frame " + std::to_string(frame) + " ends after " +
                            std::to_string(got) + " of " + std::to_string(of) + " bytes: " + path);
}

MImage readPlain(const Range& range, const EdfLayout& layout, std::size_t plane, std::size_t frame)
{
    const std::uint64_t planeBytes = layout.planeBytes();
    const std::uint64_t before = planeBytes * plane;
    const std::uint64_t there =
        std::min(planeBytes, range.bytes > before ? range.bytes - before : 0);
    if (there < planeBytes)
        endsEarly(frame, there, planeBytes, range.file.path());
    MImage image(layout.width, layout.height, layout.type, layout.typeBits);
    const bool swap = layout.bigEndian != (std::endian::native == std::endian::big);
    const std::size_t got = imglib::readPixels(
        range.file, range.begin + before, {static_cast<std::byte*>(image.data()), image.dataSize()},
        swap ? layout.typeBits / 8 : 1);
    if (got < planeBytes)
        endsEarly(frame, got, planeBytes, range.file.path());
    return image;
}

/// Highest number of bytes that one byte can become.
std::uint64_t bestRatio(Packing packing)
{
    return packing == Packing::Bzip2 ? std::uint64_t(1) << 21 : 1032;
}

MImage readPacked(const Range& range, const EdfLayout& layout, std::size_t plane, std::size_t frame)
{
    const std::string& path = range.file.path();
    const std::uint64_t needed = layout.planeBytes() * layout.planes;
    if (needed / bestRatio(layout.packing) > range.bytes)
        throw MRuntimeException("EDF: " + std::to_string(range.bytes) +
                                " compressed bytes can't hold the " + std::to_string(needed) +
                                " bytes of frame " + std::to_string(frame) + ": " + path);
    const auto packed = image::PixelBuffer::allocate(static_cast<std::size_t>(range.bytes));
    const std::size_t there = range.file.readSome(range.begin, packed->data(), packed->size());

    MImage image(layout.width, layout.height, layout.type, layout.typeBits);
    const std::span<std::byte> pixels(static_cast<std::byte*>(image.data()), image.dataSize());
    // The other images of a stack have to be unpacked with this one.
    const image::PixelBufferPtr stack =
        layout.planes > 1 ? image::PixelBuffer::allocate(static_cast<std::size_t>(needed))
                          : nullptr;
    const auto target = stack ? std::span(stack->data(), stack->size()) : pixels;
    const std::size_t got = unpackInto({packed->cdata(), there}, layout.packing, target, path);
    if (got < target.size())
        endsEarly(frame, got, target.size(), path);
    if (stack)
        std::memcpy(pixels.data(), stack->cdata() + plane * pixels.size(), pixels.size());
    if (layout.bigEndian != (std::endian::native == std::endian::big))
        swapByteOrder(pixels, layout.typeBits / 8);
    return image;
}

}  // namespace

MImage readPixels(const ByteSource& source, const EdfBlock& block, const EdfLayout& layout,
                  std::size_t frame)
{
    const Range range = dataRange(source, block, layout);
    const std::size_t plane = frame - block.firstFrame;
    return layout.packing == Packing::None ? readPlain(range, layout, plane, frame)
                                           : readPacked(range, layout, plane, frame);
}

}  // namespace morvend::imglib::edf
