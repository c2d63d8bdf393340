// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Directory after directory, each looked at once.
#include "imagelib/io/formats/tiff/TiffPages.h"

#include "imagelib/image/MException.h"

#include <algorithm>

namespace morvend::imglib::tiff {

namespace {

constexpr std::size_t MostEntries = 4096;
constexpr std::size_t MostPages = std::size_t(1) << 20;
constexpr std::uint64_t LongestText = std::uint64_t(16) << 20;

constexpr std::uint64_t NewSubfileType = 254;
constexpr std::uint64_t ImageDescription = 270;
constexpr std::uint64_t PreviewOrMask = 1 | 4;
constexpr std::uint64_t Short = 3;  // a type of two bytes

/// Widths of the numbers in a directory.
struct Widths {
    std::size_t count;   // number of entries
    std::size_t entry;   // one entry
    std::size_t offset;  // offsets, value counts, values
};

Widths widths(bool bigTiff) { return bigTiff ? Widths{8, 20, 8} : Widths{2, 12, 4}; }

bool isOneByteType(std::uint64_t type) { return type == 1 || type == 2 || type == 7; }

}  // namespace

bool TiffPages::isTiff(std::string_view head)
{
    using namespace std::string_view_literals;
    const std::string_view mark = head.substr(0, 4);
    return mark == "II*\0"sv || mark == "MM\0*"sv || mark == "II+\0"sv || mark == "MM\0+"sv;
}

TiffPages::TiffPages(std::shared_ptr<const ByteSource> source)
    : _source(std::move(source))
{
    const std::string head = _source->head(4);
    _bigEndian = head[0] == 'M';
    _bigTiff = head[_bigEndian ? 3 : 2] == '+';
    _nextAt = _bigTiff ? 8 : 4;
    if (!_walk())
        throw MRuntimeException("TIFF: the file holds no image: " + _source->path());
    if (_pages.empty())
        throw MRuntimeException(_damage);
}

const TiffPage& TiffPages::page(std::size_t position)
{
    while (position >= _pages.size() && _walk()) {
    }
    if (position < _pages.size())
        return _pages[position];
    if (position == _pages.size() && !_damage.empty())
        throw MRuntimeException(_damage);
    throw MOutOfRangeException("TIFF: there is no page " + std::to_string(position + 1) + " of " +
                               std::to_string(_pages.size()) + ": " + _source->path());
}

std::size_t TiffPages::count()
{
    while (_walk()) {
    }
    return _pages.size() + (_damage.empty() ? 0 : 1);
}

void TiffPages::update() { _damage.clear(); }

std::uint64_t TiffPages::_number(std::span<const std::byte> bytes) const
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        value = value << 8 |
                std::to_integer<std::uint64_t>(bytes[_bigEndian ? i : bytes.size() - 1 - i]);
    return value;
}

/// One step along the chain; false at its end or where it is broken already.
bool TiffPages::_walk()
{
    if (!_damage.empty())
        return false;
    std::byte link[8];
    const std::size_t linkBytes = widths(_bigTiff).offset;
    if (_source->readSome(_nextAt, link, linkBytes) < linkBytes) {
        _breakOff("the file ends after " + std::to_string(_source->size()) + " bytes");
        return true;
    }
    const std::uint64_t offset = _number(std::span(link, linkBytes));
    if (offset == 0)
        return false;
    if (_seen.contains(offset))
        _breakOff("the chain of directories returns to byte " + std::to_string(offset));
    else if (_seen.size() >= MostPages)
        _breakOff("more than " + std::to_string(MostPages) + " pages");
    else
        _readDirectory(offset);
    return true;
}

void TiffPages::_readDirectory(std::uint64_t offset)
{
    const Widths width = widths(_bigTiff);
    std::vector<std::byte> bytes(1024);  // holds most directories, so that one read will do
    bytes.resize(_source->readSome(offset, bytes.data(), bytes.size()));
    const auto place = [&] { return "the directory at byte " + std::to_string(offset); };
    if (bytes.size() < width.count)
        return _breakOff(place() + " lies beyond the end of the file");
    const std::uint64_t entries = _number(std::span(bytes).first(width.count));
    if (entries == 0 || entries > MostEntries)
        return _breakOff(place() + " can't have " + std::to_string(entries) + " entries");
    const std::size_t needed =
        width.count + static_cast<std::size_t>(entries) * width.entry + width.offset;
    if (needed > bytes.size()) {
        bytes.resize(needed);
        if (_source->readSome(offset, bytes.data(), needed) < needed)
            return _breakOff(place() + " is cut off by the end of the file");
    }
    _seen.insert(offset);
    _nextAt = offset + needed - width.offset;
    _readEntries(offset, std::span(bytes).first(needed - width.offset));
}

void TiffPages::_readEntries(std::uint64_t offset, std::span<const std::byte> directory)
{
    const Widths width = widths(_bigTiff);
    TiffPage page;
    page.directory = offset;
    std::uint64_t kind = 0;
    for (std::size_t at = width.count; at < directory.size(); at += width.entry) {
        const auto entry = directory.subspan(at, width.entry);
        const std::uint64_t tag = _number(entry.first(2));
        const std::uint64_t type = _number(entry.subspan(2, 2));
        const std::uint64_t count = _number(entry.subspan(4, width.offset));
        const auto value = entry.last(width.offset);
        if (tag == NewSubfileType)
            kind = _number(value.first(type == Short ? 2 : 4));
        if (tag == ImageDescription && isOneByteType(type)) {
            page.textBytes = std::min(count, LongestText);
            page.textOffset =
                count <= width.offset ? offset + at + width.entry - width.offset : _number(value);
        }
    }
    if (_pages.empty() || (kind & PreviewOrMask) == 0)
        _pages.push_back(page);
}

void TiffPages::_breakOff(const std::string& reason)
{
    _damage = "TIFF: page " + std::to_string(_pages.size() + 1) + " can't be found: " + reason +
              ": " + _source->path();
}

}  // namespace morvend::imglib::tiff
