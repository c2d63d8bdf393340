// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Strips and tiles into an image.
#include "imagelib/io/formats/tiff/TiffPixels.h"

#include "imagelib/io/formats/base/Cancellation.h"
#include "imagelib/io/formats/base/HalfFloats.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "imagelib/io/formats/tiff/TiffHandle.h"
#include "imagelib/io/formats/tiff/TiffLayout.h"
#include "imagelib/io/formats/tiff/Widen.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>
#include <vector>

namespace morvend::imglib::tiff {

namespace {

using Bytes = std::span<std::byte>;

class PixelReader {
public:
    PixelReader(TiffHandle& handle, const TiffLayout& layout, bool bigEndian)
        : _handle(handle)
        , _layout(layout)
        , _swap(bigEndian != (std::endian::native == std::endian::big))
        , _searchFlags(layout.signUntold && layout.fileBits == 32)
        , _image(layout.width, layout.height, layout.type, layout.typeBits)
        , _pixels(static_cast<std::byte*>(_image.data()), _image.dataSize())
    {}

    MImage read()
    {
        if (_layout.tiled)
            _readTiles();
        else if (_layout.widened())
            _readStripsWidened();
        else if (_layout.plain)
            _readPlainStrips();
        else
            _readStrips();
        return _withSign();
    }

private:
    std::string _name(std::uint32_t part) const
    {
        return (_layout.tiled ? "tile " : "strip ") + std::to_string(part + 1) + " of " +
               std::to_string(_layout.parts);
    }
    int _rows(std::uint32_t strip) const
    {
        const std::int64_t first = std::int64_t(strip) * _layout.partHeight;
        return static_cast<int>(std::min<std::int64_t>(_layout.partHeight, _layout.height - first));
    }
    std::size_t _stripBytes(std::uint32_t strip) const
    {
        return static_cast<std::size_t>(_rows(strip)) * _layout.rowBytes(_layout.width);
    }

    std::uint64_t _plainOffset(std::uint32_t strip);
    void _readPlain(std::uint32_t strip, std::uint64_t offset, Bytes target);
    void _readPart(std::uint32_t part, Bytes target);
    void _readPlainStrips();
    void _readStrips();
    void _readStripsWidened();
    void _readTiles();
    void _placeRow(std::span<const std::byte> row, int x, int y, int pixels);
    void _finish(Bytes piece);
    void _noteFlags(std::span<const std::byte> pixels);
    MImage _withSign();

    TiffHandle& _handle;
    const TiffLayout& _layout;
    const bool _swap;
    const bool _searchFlags;
    MImage _image;
    const Bytes _pixels;
    std::int32_t _lowest = 0;  // of the pixels taken as signed numbers, when flags are searched
};

/// Where an uncompressed strip begins, if it is complete according to the file.
std::uint64_t PixelReader::_plainOffset(std::uint32_t strip)
{
    _handle.clearErrors();
    const std::uint64_t offset = TIFFGetStrileOffset(_handle.get(), strip);
    if (offset == 0)
        _handle.fail(_name(strip) + " is missing");
    const std::uint64_t bytes = TIFFGetStrileByteCount(_handle.get(), strip);
    if (bytes < _stripBytes(strip))
        _handle.fail(_name(strip) + " has " + std::to_string(bytes) + " of " +
                     std::to_string(_stripBytes(strip)) + " bytes");
    return offset;
}

/// Byte order, and the search for flags.
void PixelReader::_finish(Bytes piece)
{
    if (_swap)
        swapByteOrder(piece, _layout.fileBits / 8);
    _noteFlags(piece);
}

void PixelReader::_noteFlags(std::span<const std::byte> pixels)
{
    if (_searchFlags)
        _lowest =
            std::min(_lowest, lowestSigned({reinterpret_cast<const std::int32_t*>(pixels.data()),
                                            pixels.size() / sizeof(std::int32_t)}));
}

/// Reads strips that follow each other in the file, the first of which is `strip`.
void PixelReader::_readPlain(std::uint32_t strip, std::uint64_t offset, Bytes target)
{
    const bool asItIs = !_searchFlags && (!_swap || _layout.fileBits <= 8);
    const std::size_t got = asItIs ? _handle.source().readSome(offset, target.data(), target.size())
                                   : readInPieces(_handle.source(), offset, target,
                                                  [this](Bytes piece) { _finish(piece); });
    if (got == target.size())
        return;
    const std::size_t whole = _stripBytes(strip);
    strip += static_cast<std::uint32_t>(got / whole);
    _handle.clearErrors();
    _handle.fail("the file ends in " + _name(strip) + ", after " + std::to_string(got % whole) +
                 " of its " + std::to_string(_stripBytes(strip)) + " bytes");
}

void PixelReader::_readPlainStrips()
{
    std::uint32_t first = 0;
    while (first < _layout.parts) {
        const std::uint64_t offset = _plainOffset(first);
        std::uint64_t bytes = _stripBytes(first);
        std::uint32_t next = first + 1;
        while (next < _layout.parts && _plainOffset(next) == offset + bytes)
            bytes += _stripBytes(next++);
        const std::size_t start = std::size_t(first) * _stripBytes(0);
        _readPlain(first, offset, _pixels.subspan(start, static_cast<std::size_t>(bytes)));
        first = next;
    }
}

/// A strip or tile through libtiff, in this machine's byte order.
void PixelReader::_readPart(std::uint32_t part, Bytes target)
{
    checkCancelled();
    _handle.clearErrors();
    if (TIFFGetStrileOffset(_handle.get(), part) == 0)
        _handle.fail(_name(part) + " is missing");
    const auto size = static_cast<tmsize_t>(target.size());
    const tmsize_t got = _layout.tiled
                             ? TIFFReadEncodedTile(_handle.get(), part, target.data(), size)
                             : TIFFReadEncodedStrip(_handle.get(), part, target.data(), size);
    if (got != size)
        _handle.fail(_name(part) + " is damaged or cut");
}

void PixelReader::_readStrips()
{
    const std::size_t step = _stripBytes(0);
    for (std::uint32_t strip = 0; strip < _layout.parts; ++strip) {
        const Bytes target = _pixels.subspan(strip * step, _stripBytes(strip));
        _readPart(strip, target);
        _noteFlags(target);
    }
}

void PixelReader::_readStripsWidened()
{
    std::vector<std::byte> scratch(_stripBytes(0));
    const std::size_t rowBytes = _layout.rowBytes(_layout.width);
    for (std::uint32_t strip = 0; strip < _layout.parts; ++strip) {
        _readPart(strip, Bytes(scratch).first(_stripBytes(strip)));
        const int top = static_cast<int>(strip) * _layout.partHeight;
        for (int row = 0; row < _rows(strip); ++row)
            _placeRow(Bytes(scratch).subspan(static_cast<std::size_t>(row) * rowBytes, rowBytes), 0,
                      top + row, _layout.width);
    }
}

void PixelReader::_readTiles()
{
    const std::size_t rowBytes = _layout.rowBytes(_layout.partWidth);
    std::vector<std::byte> scratch(rowBytes * static_cast<std::size_t>(_layout.partHeight));
    std::uint32_t tile = 0;
    for (std::int64_t top = 0; top < _layout.height; top += _layout.partHeight)
        for (std::int64_t left = 0; left < _layout.width; left += _layout.partWidth) {
            _readPart(tile++, scratch);
            const auto x = static_cast<int>(left);
            const auto y = static_cast<int>(top);
            const int columns = std::min(_layout.partWidth, _layout.width - x);
            const int rows = std::min(_layout.partHeight, _layout.height - y);
            for (int row = 0; row < rows; ++row)
                _placeRow(
                    Bytes(scratch).subspan(static_cast<std::size_t>(row) * rowBytes, rowBytes), x,
                    y + row, columns);
        }
    _noteFlags(_pixels);
}

/// Copies or widens a part of a row into the image.
void PixelReader::_placeRow(std::span<const std::byte> row, int x, int y, int pixels)
{
    const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(_layout.width) +
                           static_cast<std::size_t>(x);
    const auto count = static_cast<std::size_t>(pixels);
    std::byte* const target = _pixels.data() + at * (_layout.typeBits / 8);
    if (!_layout.widened())
        std::memcpy(target, row.data(), count * (_layout.typeBits / 8));
    else if (_layout.type == datatypes::FLOAT)
        widenHalfFloats(row.first(2 * count), false, target);
    else
        unpackBits(row, _layout.fileBits, count, target);
}

MImage PixelReader::_withSign()
{
    if (_lowest >= 0 || _lowest < -2)
        return std::move(_image);
    const MImage::BasicImage& pixels = _image.imageData();
    return {_layout.width, _layout.height,
            MImage::BasicImage(pixels.buffer(), datatypes::INT, 32, pixels.size())};
}

}  // namespace

MImage readPixels(TiffHandle& handle, const TiffLayout& layout, bool bigEndian)
{
    return PixelReader(handle, layout, bigEndian).read();
}

}  // namespace morvend::imglib::tiff
