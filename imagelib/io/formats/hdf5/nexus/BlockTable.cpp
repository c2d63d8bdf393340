// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counts blocks: by proof, by sample or one by one.
#include "imagelib/io/formats/hdf5/nexus/BlockTable.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/LinkedFailure.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr std::size_t AlwaysCounted = 24;
constexpr std::size_t Samples = 6;
/// Far beyond what image numbers can count, and small enough for the sum over all blocks.
constexpr std::size_t MostFrames = std::size_t(1) << 32;

/// The frames that a block counts for.
std::size_t countable(const FrameSource& set) { return std::min(set.frames(), MostFrames); }

}  // namespace

BlockTable::BlockTable(OpenFrameSets& sets, std::string master,
                       const std::vector<std::string>& links, std::size_t planned)
    : _sets(&sets)
    , _master(std::move(master))
    , _planned(planned)
{
    for (const std::string& link : links)
        _blocks.push_back({link, std::nullopt, std::nullopt});
    _findEnd();
    _countBlocks();
}

BlockTable::BlockTable(OpenFrameSets& sets, std::vector<ObjectPath> datasets)
    : _sets(&sets)
{
    for (ObjectPath& dataset : datasets)
        _blocks.push_back({dataset.path, std::move(dataset), std::nullopt});
    _findEnd();
    _countBlocks();
}

const ObjectPath& BlockTable::_target(Block& block)
{
    if (!block.target)
        block.target = _sets->files().target(_sets->files().file(_master), block.link);
    return *block.target;
}

FrameSourcePtr BlockTable::_setOf(Block& block)
{
    return fromLink(block.link, _master, [&] { return _sets->at(_target(block)); });
}

bool BlockTable::_fileExists(Block& block)
{
    try {
        return FileStamp(_target(block).file).exists();
    } catch (const MException&) {
        return false;  // a damaged link leads to nothing that exists
    }
}

bool BlockTable::_leadsToFile(Block& block, const std::string& name)
{
    try {
        return baseName(_target(block).file) == name;
    } catch (const MException&) {
        return false;  // a damaged link leads nowhere
    }
}

void BlockTable::_findEnd()
{
    std::size_t end = _blocks.size();
    while (end > _end && !_fileExists(_blocks[end - 1]))
        --end;
    _end = std::max(_end, end);
    if (_end == 0)
        _failWithoutBlocks();
}

void BlockTable::_failWithoutBlocks()
{
    const ObjectPath& first = _target(_blocks.front());  // throws if its link is wrong
    const std::string link = ", to which the link " + _blocks.front().link + " leads: ";
    if (_blocks.size() == 1)
        throw MNoFileAccessException("HDF5: the data file " + first.file + " does not exist" +
                                     link + _master);
    throw MNoFileAccessException("HDF5: none of the " + std::to_string(_blocks.size()) +
                                 " data files exists, the first is " + first.file + link + _master);
}

bool BlockTable::_countBlock(std::size_t block)
{
    Block& mine = _blocks[block];
    if (mine.frames)
        return true;
    try {
        mine.frames = countable(*_setOf(mine));
        return true;
    } catch (const MException&) {
        // The block's own frames will fail with this text; the others must not.
        if (!_firstFailure)
            _firstFailure = std::current_exception();
        return false;
    }
}

void BlockTable::_countBlocks()
{
    std::size_t first = 0;
    while (first < _end && !_countBlock(first))
        ++first;
    if (first == _end)
        std::rethrow_exception(_firstFailure);
    _common = *_blocks[first].frames;
    _countBlock(_end - 1);
    _updateStarts();
    if (_end <= 3 || _common == 0 || _anyDiffersFromFirst()) {
        _countAllBlocks();
    } else if (_isProved(_frames)) {
        _certainty = Certainty::Proved;
    } else if (_end > AlwaysCounted && _samplesAgree()) {
        _certainty = Certainty::Estimated;
    } else {
        _countAllBlocks();
    }
}

bool BlockTable::_isProved(std::size_t total)
{
    if (total == _planned)
        return true;
    const auto first = _firstImageNumber(0);
    const auto last = _firstImageNumber(_end - 1);
    return first && last && *last >= *first &&
           static_cast<unsigned long long>(*last - *first) == total - _framesOf(_end - 1);
}

std::optional<long long> BlockTable::_firstImageNumber(std::size_t block)
{
    try {
        const FrameSourcePtr set = _sets->at(_target(_blocks[block]));
        const auto value = readAttribute(set->id(), "image_nr_low");
        const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
        return number ? std::optional<long long>(*number) : std::nullopt;
    } catch (const MException&) {
        return std::nullopt;  // a block that can't be opened proves nothing
    }
}

bool BlockTable::_samplesAgree()
{
    for (std::size_t i = 1; i <= Samples; ++i)
        _countBlock(i * (_end - 1) / (Samples + 1));
    return !_anyDiffersFromFirst();
}

std::size_t BlockTable::_framesOf(std::size_t block) const
{
    return _blocks[block].frames.value_or(_common);
}

bool BlockTable::_anyDiffersFromFirst() const
{
    return std::any_of(_blocks.begin(), _blocks.begin() + static_cast<std::ptrdiff_t>(_end) - 1,
                       [&](const Block& each) { return each.frames.value_or(_common) != _common; });
}

void BlockTable::_countAllBlocks()
{
    for (std::size_t i = 0; i < _end; ++i)
        _countBlock(i);
    _certainty = Certainty::Counted;
    _updateStarts();
}

void BlockTable::_updateStarts()
{
    _starts.assign(1, 0);
    for (std::size_t i = 0; i < _end; ++i)
        _starts.push_back(_starts.back() + _framesOf(i));
    _frames = _starts.back();
}

std::optional<BlockTable::BlockFrame> BlockTable::_blockOf(std::size_t position) const
{
    if (position >= _frames)
        return std::nullopt;
    const auto after = std::upper_bound(_starts.begin(), _starts.end(), position);
    const auto block = static_cast<std::size_t>(after - _starts.begin()) - 1;
    return BlockFrame{block, position - _starts[block]};
}

FrameLocation BlockTable::locate(std::size_t position)
{
    // Each round makes more blocks known, so the loop ends.
    for (;;) {
        const auto at = _blockOf(position);
        if (!at)
            throw MOutOfRangeException("HDF5: there is no image " + std::to_string(position + 1) +
                                       ", the series has " + std::to_string(_frames) + ": " +
                                       (_master.empty() ? _blocks.front().target->file : _master));
        if (_certainty == Certainty::Estimated && (at->block > 0 || _asked)) {
            _countAllBlocks();
            continue;
        }
        _asked = true;
        FrameSourcePtr set = _setOf(_blocks[at->block]);
        _blocks[at->block].frames = _blocks[at->block].frames.value_or(countable(*set));
        if (*_blocks[at->block].frames != _starts[at->block + 1] - _starts[at->block]) {
            _countAllBlocks();
            continue;
        }
        return {std::move(set), at->frame, _blocks[at->block].link};
    }
}

std::string BlockTable::path(std::size_t position)
{
    const auto at = _blockOf(position);
    if (!at)
        return _master;
    try {
        Block& block = _blocks[at->block];
        const std::string file = _target(block).file;
        const FrameSourcePtr set = FileStamp(file).exists() ? _sets->at(*block.target) : nullptr;
        return set && at->frame < set->frames() ? set->holder(at->frame) : file;
    } catch (const MException&) {
        const Block& block = _blocks[at->block];
        return block.target ? block.target->file : _master;
    }
}

std::optional<std::size_t> BlockTable::firstFrameIn(const std::string& file)
{
    const std::string wanted = baseName(file);
    for (std::size_t i = 0; i < _end; ++i) {
        if (!_leadsToFile(_blocks[i], wanted))
            continue;
        if (_certainty == Certainty::Estimated && i > 0)
            _countAllBlocks();
        return _starts[i];
    }
    if (_end == 1)
        return _sets->at(_target(_blocks.front()))->firstFrameIn(file);
    return std::nullopt;
}

void BlockTable::update()
{
    // The former last block may have grown, and one that failed to open may be complete by now.
    for (std::size_t i = _end - 1; i < _blocks.size(); ++i)
        _blocks[i].frames.reset();
    _firstFailure = nullptr;
    _findEnd();
    _countBlocks();
}

}  // namespace morvend::imglib::hdf5
