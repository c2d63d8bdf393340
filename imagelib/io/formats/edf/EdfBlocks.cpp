// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The walk from block to block.
#include "imagelib/io/formats/edf/EdfBlocks.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/edf/EdfLayout.h"

#include <algorithm>

namespace morvend::imglib::edf {

EdfBlocks::EdfBlocks(std::shared_ptr<const ByteSource> source)
    : _source(std::move(source))
{
    while (_blocks.empty() && _walk()) {
    }
    if (_blocks.empty())
        throw MRuntimeException(_damage.empty() ? "EDF: the file holds no image: " + _source->path()
                                                : _damage);
}

const EdfBlock& EdfBlocks::blockOf(std::size_t frame)
{
    while (frame >= _found() && _walk()) {
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
    while (_walk()) {
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

/// One block on; false at the end of the file or of what can be read.
bool EdfBlocks::_walk()
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
    const std::uint64_t behind = _next + header.bytes();
    const auto stated = header.number("EDF_BinarySize");
    if (_blocks.empty() && !_general && (!header.has("Dim_1") || stated == std::uint64_t(0)) &&
        _blockAt(behind + stated.value_or(0))) {
        _next = behind + stated.value_or(0);
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

/// Size of a binary block that follows its header. What the dimensions ask for holds against the
/// size that the header states, unless the place of the next header shows that it is right.
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

}  // namespace morvend::imglib::edf
