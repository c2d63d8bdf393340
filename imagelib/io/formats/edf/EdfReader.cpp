// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The walk from block to block, and blocks as frames.
#include "imagelib/io/formats/edf/EdfReader.h"

#include "imagelib/image/MBasicImageOptionalData.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/edf/EdfHeader.h"
#include "imagelib/io/formats/edf/EdfLayout.h"
#include "imagelib/io/formats/edf/EdfPixels.h"

#include <algorithm>
#include <span>
#include <vector>

namespace morvend::imglib {

namespace edf {
namespace {

/// Walks from header to header as far as requested. A walk that meets something other than a
/// block counts one more frame, which can't be read: the frames before it stay readable and the
/// damage is not passed over.
/// Thread: one at a time.
class EdfBlocks {
public:
    /// @throws MException when the first frame's header is damaged
    explicit EdfBlocks(std::shared_ptr<const ByteSource> source);

    /// The block of a frame.
    /// @throws MOutOfRangeException beyond the last frame, MRuntimeException with the reason for
    /// the frame where the walk ended
    const EdfBlock& blockOf(std::size_t frame);
    /// Number of frames; walks to the end of the file.
    std::size_t count();
    /// Goes on after the last block, where a writer may have added more.
    void update();

    /// The header of a block with the general header for missing keys.
    EdfHeader header(const EdfBlock& block) const;

private:
    /// Adds one block; false at the end of the file or of what can be read.
    bool _nextBlock();
    void _readBlock();
    void _addBlock(const EdfHeader& header, const EdfLayout& layout);
    /// True if a header begins there.
    bool _blockAt(std::uint64_t offset) const;
    /// Size of a binary block that follows its header.
    std::uint64_t _dataBytes(const EdfLayout& layout, std::uint64_t data) const;
    /// Frames so far.
    std::size_t _found() const;

    std::shared_ptr<const ByteSource> _source;
    std::shared_ptr<const EdfHeader> _general;
    std::vector<EdfBlock> _blocks;
    std::uint64_t _next = 0;
    std::uint64_t _lastBytes = 0;  // of the last frame with its header
    std::size_t _headerGuess = 4096;
    std::string _damage;
};

EdfBlocks::EdfBlocks(std::shared_ptr<const ByteSource> source)
    : _source(std::move(source))
{
    while (_blocks.empty() && _nextBlock()) {
    }
    if (_blocks.empty())
        throw MRuntimeException(_damage.empty() ? "EDF: the file holds no image: " + _source->path()
                                                : _damage);
}

const EdfBlock& EdfBlocks::blockOf(std::size_t frame)
{
    while (frame >= _found() && _nextBlock()) {
    }
    if (frame < _found())
        return *std::prev(std::upper_bound(
            _blocks.begin(), _blocks.end(), frame,
            [](std::size_t left, const EdfBlock& right) { return left < right.firstFrame; }));
    if (frame == _found() && !_damage.empty())
        throw MRuntimeException(_damage);
    throw MOutOfRangeException("EDF: there is no frame " + std::to_string(frame) + " of " +
                               std::to_string(_found()) + ": " + _source->path());
}

std::size_t EdfBlocks::count()
{
    while (_nextBlock()) {
    }
    return _found() + (_damage.empty() ? 0 : 1);
}

void EdfBlocks::update() { _damage.clear(); }

EdfHeader EdfBlocks::header(const EdfBlock& block) const
{
    EdfHeader header = EdfHeader::read(*_source, block.header, block.headerBytes);
    header.setGeneral(_general);
    return header;
}

std::size_t EdfBlocks::_found() const
{
    return _blocks.empty() ? 0 : _blocks.back().firstFrame + _blocks.back().frames;
}

bool EdfBlocks::_blockAt(std::uint64_t offset) const
{
    char head[512];
    return EdfHeader::beginsBlock({head, _source->readSome(offset, head, sizeof head)});
}

bool EdfBlocks::_nextBlock()
{
    const std::uint64_t size = _source->size();
    if (!_damage.empty() || _next >= size)
        return false;
    if (!_blocks.empty() && !_blockAt(_next)) {
        // A tail shorter than the last frame with its header is padding and can't hide another one.
        if (size - _next < _lastBytes)
            return false;
        _damage = "EDF: frame " + std::to_string(_found()) + " can't be found: there is no header" +
                  " at byte " + std::to_string(_next) + ": " + _source->path();
        return true;
    }
    try {
        _readBlock();
    } catch (const MException& exception) {
        _damage = exception.what();
    }
    return true;
}

void EdfBlocks::_readBlock()
{
    EdfHeader header = EdfHeader::read(*_source, _next, _headerGuess);
    const std::uint64_t end = _next + header.bytes();
    const auto stated = header.number("EDF_BinarySize");
    if (_blocks.empty() && !_general && (!header.has("Dim_1") || stated == std::uint64_t(0)) &&
        _blockAt(end + stated.value_or(0))) {
        _next = end + stated.value_or(0);
        _general = std::make_shared<const EdfHeader>(std::move(header));
        return;
    }
    header.setGeneral(_general);
    _addBlock(header, readLayout(header, _source->path()));
}

void EdfBlocks::_addBlock(const EdfHeader& header, const EdfLayout& layout)
{
    EdfBlock block;
    block.header = _next;
    block.headerBytes = header.bytes();
    block.data = _next + header.bytes();
    block.dataBytes = _dataBytes(layout, block.data);
    block.firstFrame = _found();
    block.frames = layout.planes;
    _blocks.push_back(block);
    _next = block.data + block.dataBytes;
    _headerGuess = header.bytes();
    _lastBytes = header.bytes() + block.dataBytes / layout.planes;
}

/// The size by the dimensions wins over the size that the header states, unless the next
/// header shows by its offset that this one is right.
std::uint64_t EdfBlocks::_dataBytes(const EdfLayout& layout, std::uint64_t data) const
{
    if (!layout.externalFile.empty())
        return 0;
    constexpr std::uint64_t MostStated = std::uint64_t(1) << 60;
    const std::uint64_t size = _source->size();
    const std::uint64_t rest = size > data ? size - data : 0;
    const std::uint64_t needed = layout.planeBytes() * layout.planes;
    if (layout.packing != Packing::None)
        return std::min(layout.statedBytes.value_or(rest), MostStated);
    const std::uint64_t stated = std::min(layout.statedBytes.value_or(needed), MostStated);
    const auto fits = [&](std::uint64_t bytes) { return bytes == rest || _blockAt(data + bytes); };
    if (stated == needed || (stated < needed && (fits(needed) || !_blockAt(data + stated))))
        return needed;
    return stated < needed || fits(stated) || !fits(needed) ? stated : needed;
}

}  // namespace
}  // namespace edf

namespace {

class EdfFile : public ImageFile {
public:
    explicit EdfFile(std::shared_ptr<const ByteSource> source)
        : _source(std::move(source))
        , _blocks(_source)
    {}

    const char* format() const override { return "EDF"; }
    std::size_t frameCount() const override { return _blocks.count(); }
    std::string framePath(std::size_t) const override { return _source->path(); }
    void update() override { _blocks.update(); }

    MImage frame(std::size_t position) const override
    {
        const edf::EdfBlock& block = _blocks.blockOf(position);
        const edf::EdfHeader header = _blocks.header(block);
        MImage image =
            edf::readPixels(*_source, block, edf::readLayout(header, _source->path()), position);
        edf::readFields(header, image.optionalData());
        return image;
    }

private:
    std::shared_ptr<const ByteSource> _source;
    mutable edf::EdfBlocks _blocks;  // walks on when a frame is asked for
};

}  // namespace

std::uint64_t edfNeed(std::string_view head)
{
    if (!edf::EdfHeader::beginsBlock(head))
        return 0;
    try {
        const auto bytes = std::as_bytes(std::span(head));
        const auto source = ByteSource::fromMemory("", {bytes.begin(), bytes.end()});
        const edf::EdfHeader header = edf::EdfHeader::read(*source, 0, head.size());
        const edf::EdfLayout layout = edf::readLayout(header, "");
        const std::uint64_t plane = std::min(layout.planeBytes(), ByteSource::MostUnpacked);
        return header.bytes() +
               plane * std::min<std::uint64_t>(layout.planes, ByteSource::MostUnpacked / plane);
    } catch (const MException&) {
        return ByteSource::AnyImage;  // a general header, or one that goes on
    }
}

std::unique_ptr<ImageFile> openEdf(std::shared_ptr<const ByteSource> source)
{
    if (!edf::EdfHeader::beginsBlock(source->head(512)))
        return nullptr;
    return std::make_unique<EdfFile>(std::move(source));
}

}  // namespace morvend::imglib
