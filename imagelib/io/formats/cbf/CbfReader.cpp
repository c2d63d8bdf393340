// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finds the binary sections of a file and decodes them into images.
#include "imagelib/io/formats/cbf/CbfReader.h"

#include "imagelib/codec/Base64.h"
#include "imagelib/codec/Md5.h"
#include "imagelib/codec/NumberWords.h"
#include "imagelib/codec/QuotedPrintable.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/base/RawPixels.h"
#include "imagelib/io/formats/cbf/ByteOffset.h"
#include "imagelib/io/formats/cbf/Canonical.h"
#include "imagelib/io/formats/cbf/CbfHeader.h"
#include "imagelib/io/formats/cbf/CbfSection.h"
#include "imagelib/io/formats/cbf/NibbleOffset.h"
#include "imagelib/io/formats/cbf/Packed.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace morvend::imglib {

namespace {

using image::PixelBuffer;
using image::PixelBufferPtr;
using BasicImage = MImage::BasicImage;

constexpr std::string_view Magic = "###CBF";
constexpr std::string_view Boundary = "--CIF-BINARY-FORMAT-SECTION--";
constexpr std::string_view DataMark = "\x0c\x1a\x04\xd5";
constexpr std::size_t LongestText = std::size_t(16) << 20;
constexpr std::size_t LongestHead = std::size_t(64) << 10;
constexpr std::size_t MostSections = 50'000;
constexpr std::uint64_t Nowhere = std::numeric_limits<std::uint64_t>::max();

/// Where a boundary that begins (or else ends) a section is at the start of a line.
std::size_t findBoundary(std::string_view piece, bool begins)
{
    for (std::size_t at = 0; (at = piece.find(Boundary, at)) != piece.npos; ++at) {
        const bool atLine = at > 0 && (piece[at - 1] == '\n' || piece[at - 1] == '\r');
        if (atLine && piece.substr(at + Boundary.size()).starts_with("--") != begins)
            return at;
    }
    return piece.npos;
}

/// Searches a file for the boundaries of its sections, piece by piece.
class BoundarySearch {
public:
    explicit BoundarySearch(const ByteSource& source)
        : _source(source)
    {}

    /// The next boundary that begins (or else ends) a section at or after `from`, or Nowhere.
    std::uint64_t next(std::uint64_t from, bool begins)
    {
        // A piece begins one byte early, for the line end, and extends over the text after it.
        constexpr std::size_t Overlap = 1 + Boundary.size() + 2;
        std::size_t size = FirstPiece;
        for (std::uint64_t at = from > 0 ? from - 1 : 0;; size = LaterPieces) {
            std::string piece(size, '\0');
            piece.resize(_source.readSome(at, piece.data(), size));
            const std::size_t found = findBoundary(piece, begins);
            if (found != piece.npos)
                return at + found;
            if (piece.size() < size)
                return Nowhere;
            at += size - Overlap;
        }
    }

private:
    static constexpr std::size_t FirstPiece = std::size_t(8) << 10;
    static constexpr std::size_t LaterPieces = std::size_t(256) << 10;

    const ByteSource& _source;
};

std::string readText(const ByteSource& source, std::uint64_t offset, std::size_t count)
{
    std::string text(count, '\0');
    text.resize(source.readSome(offset, text.data(), count));
    return text;
}

/// Where the head ends and where the data after it begin; npos if it never ends.
struct HeadEnd {
    std::size_t head;
    std::size_t data;
    bool marked;
};
HeadEnd headEnd(std::string_view text)
{
    const std::size_t mark = text.find(DataMark);
    // After the end of this section it would be the mark of another one.
    if (mark != text.npos && findBoundary(text.substr(0, mark), false) == text.npos)
        return {mark, mark + DataMark.size(), true};
    // Text encodings have no mark: an empty line ends the head.
    for (const std::string_view empty : {"\r\n\r\n", "\n\n", "\n\r\n"}) {
        if (const std::size_t at = text.find(empty); at != text.npos)
            return {at, at + empty.size(), false};
    }
    return {text.npos, text.npos, false};
}

class CbfFile : public ImageFile {
public:
    CbfFile(std::shared_ptr<const ByteSource> source, const CbfOptions& options)
        : _source(std::move(source))
        , _options(options)
    {
        BoundarySearch search(*_source);
        std::uint64_t boundary = search.next(0, true);
        if (boundary == Nowhere)
            fail("the file has no binary section with pixels");
        if (boundary > LongestText)
            fail("the text before the pixels is longer than " + std::to_string(LongestText) +
                 " bytes");
        const std::string text = readText(*_source, 0, static_cast<std::size_t>(boundary));
        const Cif cif(text);
        _header = cbfHeader(text, cif);
        while (boundary != Nowhere) {
            if (_sections.size() == MostSections)
                fail("the file has more than " + std::to_string(MostSections) + " binary sections");
            addSection(boundary, cif, search);
            const CbfSection& last = _sections.back();
            boundary = search.next(last.offset + last.bytes, true);
        }
    }

    const char* format() const override { return "CBF"; }
    std::size_t frameCount() const override { return _frames; }
    std::string framePath(std::size_t) const override { return _source->path(); }

    /// Most bytes up to the end of the first section: no encoding makes its pixels longer.
    std::uint64_t need() const
    {
        constexpr std::uint64_t LongestEncoding = 8;
        const CbfSection& first = _sections.front();
        const std::uint64_t pixels = std::min(first.fast * first.second, ByteSource::MostUnpacked);
        return first.offset + LongestEncoding * pixels * first.pixelBytes() *
                                  std::min(first.third, ByteSource::MostUnpacked / pixels);
    }

    MImage frame(std::size_t position) const override
    {
        if (position >= _frames)
            throw MOutOfRangeException("CBF: frame " + std::to_string(position) + " of " +
                                       std::to_string(_frames) +
                                       " does not exist: " + _source->path());
        std::size_t index = 0;
        for (; position >= _sections[index].third; ++index)
            position -= static_cast<std::size_t>(_sections[index].third);
        const CbfSection& section = _sections[index];
        const int width = static_cast<int>(section.fast);
        const int height = static_cast<int>(section.second);
        MImage result;
        if (section.third == 1) {
            result = MImage(width, height, decode(section));
        } else {
            if (_stackIndex != index || _stack.empty()) {
                _stack.clear();
                _stack = decode(section);
                _stackIndex = index;
            }
            result = MImage(width, height, section.type, section.bits);
            std::memcpy(result.data(),
                        static_cast<const std::byte*>(_stack.cdata()) +
                            position * result.dataSize(),
                        result.dataSize());
        }
        result.setOptionalData(_header);
        return result;
    }

private:
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw MRuntimeException("CBF: " + reason + ": " + _source->path());
    }

    void addSection(std::uint64_t boundary, const Cif& cif, BoundarySearch& search)
    {
        const std::uint64_t begin = boundary + Boundary.size();
        const std::string text = readText(*_source, begin, LongestHead);
        const HeadEnd end = headEnd(text);
        if (end.head == text.npos)
            fail("the head of the pixel data does not end");
        std::uint64_t size = 0;
        CbfSection section =
            parseMimeHead(std::string_view(text).substr(0, end.head), _source->path(), size);
        if (section.encoding == CbfSection::Encoding::Binary && !end.marked)
            fail("the four bytes 0C 1A 04 D5 before the pixel data are missing");
        completeDimensions(section, cif);
        if (section.fast == 0 || section.second == 0)
            fail("width and height of the image are missing");
        constexpr std::uint64_t most = std::numeric_limits<int>::max();
        if (section.fast > most || section.second > most || section.third > most)
            fail("an image of " + std::to_string(section.fast) + " x " +
                 std::to_string(section.second) + " x " + std::to_string(section.third) +
                 " pixels is not possible");
        checkPacking(section);
        section.offset = begin + end.data;
        const std::uint64_t left = _source->size() - std::min(_source->size(), section.offset);
        if (size == 0 || section.encoding != CbfSection::Encoding::Binary) {
            const std::uint64_t close = search.next(section.offset, false);
            size = close == Nowhere ? left : close - section.offset;
        }
        section.bytes = std::min(size, left);
        _frames += static_cast<std::size_t>(section.third);
        _sections.push_back(section);
    }

    /// Refuses packed pixels that the known writers do not store completely (docs/formats/cbf.md).
    void checkPacking(const CbfSection& section) const
    {
        using enum CbfSection::Conversion;
        if (section.conversion != Packed && section.conversion != PackedV2)
            return;
        const std::string loss = " are not read, because writers of CBF lose a part of them";
        if (section.pixelBytes() > 4)
            fail("packed pixels of 64 bits" + loss);
        if (section.fast == 1 && section.second > 1 && !section.flat)
            fail("packed pixels of a single column" + loss);
    }

    /// All pixels of a section.
    BasicImage decode(const CbfSection& section) const
    {
        if (section.encoding == CbfSection::Encoding::Binary &&
            section.conversion == CbfSection::Conversion::None && !_options.checkMd5)
            return readPlain(section);
        const std::span<const std::byte> inMemory = _source->memory();
        PixelBufferPtr scratch;
        std::span<const std::byte> stored;
        if (section.offset + section.bytes <= inMemory.size()) {
            stored = inMemory.subspan(static_cast<std::size_t>(section.offset),
                                      static_cast<std::size_t>(section.bytes));
        } else {
            scratch = PixelBuffer::allocate(static_cast<std::size_t>(section.bytes));
            const std::size_t got =
                _source->readSome(section.offset, scratch->data(), scratch->size());
            stored = {scratch->cdata(), got};
        }
        std::vector<std::byte> decoded;
        if (section.encoding != CbfSection::Encoding::Binary) {
            decoded = decodeText(section, stored);
            stored = decoded;
        }
        if (_options.checkMd5 && !section.md5.empty() &&
            codec::base64Encode(codec::md5(stored)) != section.md5)
            fail("the pixel data do not have the MD5 sum that the file states");
        return unpack(section, stored);
    }

    std::vector<std::byte> decodeText(const CbfSection& section,
                                      std::span<const std::byte> stored) const
    {
        const std::string_view text(reinterpret_cast<const char*>(stored.data()), stored.size());
        try {
            switch (section.encoding) {
            case CbfSection::Encoding::Base64:
                return codec::base64Decode(text);
            case CbfSection::Encoding::Numbers:
                return codec::numberWordsDecode(text);
            default:
                return codec::quotedPrintableDecode(text);
            }
        } catch (const MException& error) {
            fail(std::string("pixel data are damaged: ") + error.what());
        }
    }

    /// Memory for the pixels of a section, or for as many as its data can hold at most. A damaged
    /// size can thus not ask for more memory than the file's own size justifies.
    static BasicImage room(const CbfSection& section, std::uint64_t mostPixels)
    {
        const std::uint64_t frame = section.fast * section.second;
        const bool fits = frame <= mostPixels && section.third <= mostPixels / frame;
        return BasicImage(std::allocator<char>(), section.type, section.bits,
                          static_cast<std::size_t>(fits ? frame * section.third : mostPixels));
    }

    void checkComplete(const CbfSection& section, std::size_t pixels) const
    {
        const std::uint64_t frame = section.fast * section.second;
        if (pixels / frame >= section.third)
            return;
        const bool known = section.third <= std::numeric_limits<std::uint64_t>::max() / frame;
        fail("pixel data ends after " + std::to_string(pixels) + " of " +
             (known ? std::to_string(frame * section.third) : "too many") + " pixels");
    }

    BasicImage readPlain(const CbfSection& section) const
    {
        BasicImage pixels = room(section, section.bytes / section.pixelBytes());
        const std::span<std::byte> target(static_cast<std::byte*>(pixels.data()),
                                          pixels.size() * section.pixelBytes());
        const std::size_t got = readPixels(*_source, section.offset, target,
                                           section.bigEndian ? section.pixelBytes() : 1);
        checkComplete(section, got / section.pixelBytes());
        return pixels;
    }

    BasicImage unpack(const CbfSection& section, std::span<const std::byte> stored) const
    {
        using enum CbfSection::Conversion;
        const std::size_t pixelBytes = section.pixelBytes();
        const std::uint64_t mostPixels =
            section.conversion == None           ? stored.size() / pixelBytes
            : section.conversion == ByteOffset   ? stored.size()
            : section.conversion == NibbleOffset ? mostNibbleOffsetPixels(stored)
            : section.conversion == Canonical    ? mostCanonicalPixels(stored)
                                                 : mostPackedPixels(stored);
        BasicImage pixels = room(section, mostPixels);
        const std::span<std::byte> target(static_cast<std::byte*>(pixels.data()),
                                          pixels.size() * pixelBytes);
        std::size_t done = 0;
        if (section.conversion == None) {
            std::ranges::copy(stored.first(target.size()), target.begin());
            swapByteOrder(target, section.bigEndian ? pixelBytes : 1);
            done = pixels.size();
        } else if (section.conversion == ByteOffset) {
            done = unpackByteOffset(stored, pixelBytes, target).pixels;
        } else if (section.conversion == NibbleOffset) {
            done = unpackNibbles(stored, pixelBytes, target);
        } else if (section.conversion == Canonical) {
            done = unpackCanonical(stored, pixelBytes, section.type == datatypes::UINT, target);
        } else {
            done = unpackPacked(stored, packedLayout(section), pixelBytes, target);
        }
        checkComplete(section, done);
        return pixels;
    }

    std::size_t unpackNibbles(std::span<const std::byte> stored, std::size_t pixelBytes,
                              std::span<std::byte> target) const
    {
        try {
            return unpackNibbleOffset(stored, pixelBytes, target);
        } catch (const MException& error) {
            fail(error.what());
        }
    }

    static PackedLayout packedLayout(const CbfSection& section)
    {
        PackedLayout layout;
        layout.version2 = section.conversion == CbfSection::Conversion::PackedV2;
        layout.flat = section.flat;
        layout.uncorrelatedSections = section.uncorrelatedSections;
        layout.isUnsigned = section.type == datatypes::UINT;
        layout.fast = static_cast<std::size_t>(section.fast);
        layout.second = static_cast<std::size_t>(section.second);
        return layout;
    }

    std::shared_ptr<const ByteSource> _source;
    CbfOptions _options;
    MBasicImageOptionalData<> _header;
    std::vector<CbfSection> _sections;
    std::size_t _frames = 0;
    mutable BasicImage _stack;  // the section of several frames that was requested last
    mutable std::size_t _stackIndex = 0;
};

}  // namespace

std::unique_ptr<ImageFile> openCbf(std::shared_ptr<const ByteSource> source)
{
    return openCbf(std::move(source), CbfOptions());
}

std::uint64_t cbfNeed(std::string_view head)
{
    if (!head.starts_with(Magic))
        return 0;
    try {
        const auto bytes = std::as_bytes(std::span(head));
        return CbfFile(ByteSource::fromMemory("", {bytes.begin(), bytes.end()}), {}).need();
    } catch (const MException&) {
        return ByteSource::AnyImage;  // its pixels begin later
    }
}

std::unique_ptr<ImageFile> openCbf(std::shared_ptr<const ByteSource> source,
                                   const CbfOptions& options)
{
    if (source->head(Magic.size()) != Magic)
        return nullptr;
    return std::make_unique<CbfFile>(std::move(source), options);
}

}  // namespace morvend::imglib
