// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Tags to layout, with every number checked before memory is asked for.
#include "imagelib/io/formats/tiff/TiffLayout.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/tiff/TiffHandle.h"

#include <limits>
#include <string>

namespace morvend::imglib::tiff {

namespace {

[[noreturn]] void unsupported(const TiffHandle& handle, const std::string& what)
{
    throw MNotImplementedException("TIFF: " + what + ": " + handle.source().path());
}

std::uint16_t shortTag(const TiffHandle& handle, std::uint32_t tag, std::uint16_t fallback)
{
    std::uint16_t value = fallback;
    TIFFGetFieldDefaulted(handle.get(), tag, &value);
    return value;
}

/// Size of a page, a tile or a strip: at least 1.
int sizeTag(const TiffHandle& handle, std::uint32_t tag, const char* what)
{
    std::uint32_t value = 0;
    TIFFGetFieldDefaulted(handle.get(), tag, &value);
    if (value == 0 || value > static_cast<std::uint32_t>(std::numeric_limits<int>::max()))
        handle.fail(std::string(what) + " can't be " + std::to_string(value) + " pixels");
    return static_cast<int>(value);
}

void readPixelType(const TiffHandle& handle, TiffLayout& layout)
{
    std::uint16_t format = SAMPLEFORMAT_UINT;
    layout.signUntold =
        !TIFFGetField(handle.get(), TIFFTAG_SAMPLEFORMAT, &format) || format == SAMPLEFORMAT_VOID;
    const std::size_t bits = shortTag(handle, TIFFTAG_BITSPERSAMPLE, 1);
    const bool whole = bits == 8 || bits == 16 || bits == 32 || bits == 64;
    const bool packed = bits >= 1 && bits < 16 && bits != 8;
    const std::string named = std::to_string(bits) + "-bit ";
    layout.fileBits = bits;
    layout.typeBits = whole ? bits : bits < 8 ? 8 : 16;
    switch (format) {
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID:
        if (!whole && !packed)
            unsupported(handle, named + "integers are not read");
        layout.type = datatypes::UINT;
        return;
    case SAMPLEFORMAT_INT:
        if (!whole)
            unsupported(handle, named + "signed integers are not read");
        layout.type = datatypes::INT;
        return;
    case SAMPLEFORMAT_IEEEFP:
        if (bits != 16 && bits != 32 && bits != 64)
            unsupported(handle, named + "floating-point numbers are not read");
        layout.type = datatypes::FLOAT;
        layout.typeBits = bits == 64 ? 64 : 32;
        return;
    default:
        unsupported(handle, "complex numbers are not read");
    }
}

void refuseColours(const TiffHandle& handle)
{
    const std::uint16_t samples = shortTag(handle, TIFFTAG_SAMPLESPERPIXEL, 1);
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(handle.get(), TIFFTAG_PHOTOMETRIC, &photometric);
    if (samples != 1)
        unsupported(handle, (samples >= 3 ? "colour images are not read ("
                                          : "images with transparency are not read (") +
                                std::to_string(samples) + " values a pixel)");
    if (photometric == PHOTOMETRIC_LOGL || photometric == PHOTOMETRIC_LOGLUV)
        unsupported(handle, "logarithmic luminance is not read");
}

std::string compressionName(std::uint16_t compression)
{
    const TIFFCodec* codec = TIFFFindCODEC(compression);
    return codec ? codec->name : "number " + std::to_string(compression);
}

/// Highest number of bytes that one byte of a file can become.
std::uint64_t bestRatio(std::uint16_t compression)
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_LZW:
        return 4096;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return 1032;
    default:  // formats that shrink a uniform image to almost nothing: only keeps memory in
              // proportion
        return 1 << 17;
    }
}

__extension__ using Wide = unsigned __int128;  // products of sizes cannot overflow it

/// True if the file can hold `height` rows, as the page or as one of its tiles.
void checkSize(const TiffHandle& handle, const TiffLayout& layout, int width, int height)
{
    const std::uint16_t compression = shortTag(handle, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    const auto bytes = static_cast<Wide>(layout.rowBytes(width)) * static_cast<unsigned>(height);
    const std::uint64_t fileBytes = handle.source().size();
    if (bytes > static_cast<Wide>(fileBytes) * bestRatio(compression))
        throw MRuntimeException("TIFF: " + std::to_string(width) + " x " + std::to_string(height) +
                                " pixels of " + std::to_string(layout.fileBits) +
                                " bits can't be in a file of " + std::to_string(fileBytes) +
                                " bytes: " + handle.source().path());
}

/// A tile may reach beyond its page, as small pages of large tiles do, but not by any size: it is
/// unpacked into memory of its own.
void checkTile(const TiffHandle& handle, const TiffLayout& layout)
{
    constexpr Wide AlwaysAllowed = Wide(64) << 20;
    const auto bytes = [&](int width, int height) {
        return static_cast<Wide>(layout.rowBytes(width)) * static_cast<unsigned>(height);
    };
    const Wide tile = bytes(layout.partWidth, layout.partHeight);
    if (tile > AlwaysAllowed && tile > bytes(layout.width, layout.height))
        handle.fail("a page of " + std::to_string(layout.width) + " x " +
                    std::to_string(layout.height) + " pixels can't have tiles of " +
                    std::to_string(layout.partWidth) + " x " + std::to_string(layout.partHeight));
}

std::uint64_t partsAcross(int size, int part)
{
    return (static_cast<std::uint64_t>(size) + static_cast<std::uint64_t>(part) - 1) /
           static_cast<std::uint64_t>(part);
}

void readParts(const TiffHandle& handle, TiffLayout& layout)
{
    layout.tiled = TIFFIsTiled(handle.get()) != 0;
    if (layout.tiled) {
        layout.partWidth = sizeTag(handle, TIFFTAG_TILEWIDTH, "the width of a tile");
        layout.partHeight = sizeTag(handle, TIFFTAG_TILELENGTH, "the height of a tile");
        layout.parts = TIFFNumberOfTiles(handle.get());
        checkSize(handle, layout, layout.partWidth, layout.partHeight);
        checkTile(handle, layout);
    } else {
        std::uint32_t rows = 0;  // absent or all ones: one strip holds everything
        TIFFGetFieldDefaulted(handle.get(), TIFFTAG_ROWSPERSTRIP, &rows);
        const auto height = static_cast<std::uint32_t>(layout.height);
        layout.partWidth = layout.width;
        layout.partHeight = static_cast<int>(rows == 0 || rows > height ? height : rows);
        layout.parts = TIFFNumberOfStrips(handle.get());
    }
    if (layout.parts !=
        partsAcross(layout.width, layout.partWidth) * partsAcross(layout.height, layout.partHeight))
        handle.fail("a page can't have " + std::to_string(layout.parts) +
                    (layout.tiled ? " tiles" : " strips"));
}

}  // namespace

TiffLayout readLayout(const TiffHandle& handle)
{
    TiffLayout layout;
    layout.width = sizeTag(handle, TIFFTAG_IMAGEWIDTH, "the width of a page");
    layout.height = sizeTag(handle, TIFFTAG_IMAGELENGTH, "the height of a page");
    refuseColours(handle);
    readPixelType(handle, layout);
    const std::uint16_t compression = shortTag(handle, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    if (!TIFFIsCODECConfigured(compression))
        unsupported(handle, "compression " + compressionName(compression) + " is not read");
    checkSize(handle, layout, layout.width, layout.height);
    readParts(handle, layout);
    layout.plain = compression == COMPRESSION_NONE &&
                   shortTag(handle, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_MSB2LSB;
    return layout;
}

}  // namespace morvend::imglib::tiff
