// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Counting of blocks, by proof, by sample or one by one.
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
std::size_t countable(const FrameSet& set) { return std::min(set.frames(), MostFrames); }

}  // namespace

BlockTable::BlockTable(FrameSets& sets, std::string master, const std::vector<std::string>& links,
                       std::size_t planned)
    : _sets(&sets)
    , _master(std::move(master))
    , _planned(planned)
{
    for (const std::string& link : links)
        _blocks.push_back({link, std::nullopt, std::nullopt});
    _findEnd();
    _settle();
}

BlockTable::BlockTable(FrameSets& sets, std::vector<Place> places)
    : _sets(&sets)
{
    for (Place& place : places)
        _blocks.push_back({place.path, std::move(place), std::nullopt});
    _findEnd();
    _settle();
}

const Place& BlockTable::_place(Block& block)
{
    if (!block.place)
        block.place = _sets->files().target(_sets->files().file(_master), block.link);
    return *block.place;
}

FrameSetPtr BlockTable::_setOf(Block& block)
{
    return fromLink(block.link, _master, [&] { return _sets->at(_place(block)); });
}

bool BlockTable::_exists(Block& block)
{
    try {
        return FileState::of(_place(block).file).exists();
    } catch (const MException&) {
        return false;  // a damaged link leads to nothing that exists
    }
}

bool BlockTable::_leadsTo(Block& block, const std::string& name)
{
    try {
        return baseName(_place(block).file) == name;
    } catch (const MException&) {
        return false;  // a damaged link leads nowhere
    }
}

void BlockTable::_findEnd()
{
    std::size_t end = _blocks.size();
    while (end > _end && !_exists(_blocks[end - 1]))
        --end;
    _end = std::max(_end, end);
    if (_end == 0)
        _failWithoutBlocks();
}

void BlockTable::_failWithoutBlocks()
{
    const Place& first = _place(_blocks.front());  // throws when its link is what is wrong
    const std::string link = ", to which the link " + _blocks.front().link + " leads: ";
    if (_blocks.size() == 1)
        throw MNoFileAccessException("HDF5: the data file " + first.file + " does not exist" +
                                     link + _master);
    throw MNoFileAccessException("HDF5: none of the " + std::to_string(_blocks.size()) +
                                 " data files exists, the first is " + first.file + link + _master);
}

bool BlockTable::_open(std::size_t block)
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

void BlockTable::_settle()
{
    std::size_t first = 0;
    while (first < _end && !_open(first))
        ++first;
    if (first == _end)
        std::rethrow_exception(_firstFailure);
    _common = *_blocks[first].frames;
    _open(_end - 1);
    _sum();
    if (_end <= 3 || _common == 0 || _middleDiffers()) {
        _countAll();
    } else if (_proved(_frames)) {
        _certainty = Certainty::Proved;
    } else if (_end > AlwaysCounted && _samplesAgree()) {
        _certainty = Certainty::Estimated;
    } else {
        _countAll();
    }
}

bool BlockTable::_proved(std::size_t total)
{
    if (total == _planned)
        return true;
    const auto first = _imageNumber(0);
    const auto last = _imageNumber(_end - 1);
    return first && last && *last >= *first &&
           static_cast<unsigned long long>(*last - *first) == total - _size(_end - 1);
}

std::optional<long long> BlockTable::_imageNumber(std::size_t block)
{
    try {
        const FrameSetPtr set = _sets->at(_place(_blocks[block]));
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
        _open(i * (_end - 1) / (Samples + 1));
    return !_middleDiffers();
}

std::size_t BlockTable::_size(std::size_t block) const
{
    return _blocks[block].frames.value_or(_common);
}

bool BlockTable::_middleDiffers() const
{
    return std::any_of(_blocks.begin(), _blocks.begin() + static_cast<std::ptrdiff_t>(_end) - 1,
                       [&](const Block& each) { return each.frames.value_or(_common) != _common; });
}

void BlockTable::_countAll()
{
    for (std::size_t i = 0; i < _end; ++i)
        _open(i);
    _certainty = Certainty::Counted;
    _sum();
}

void BlockTable::_sum()
{
    _starts.assign(1, 0);
    for (std::size_t i = 0; i < _end; ++i)
        _starts.push_back(_starts.back() + _size(i));
    _frames = _starts.back();
}

std::optional<BlockTable::Position> BlockTable::_position(std::size_t position) const
{
    if (position >= _frames)
        return std::nullopt;
    const auto after = std::upper_bound(_starts.begin(), _starts.end(), position);
    const auto block = static_cast<std::size_t>(after - _starts.begin()) - 1;
    return Position{block, position - _starts[block]};
}

BlockTable::Spot BlockTable::spot(std::size_t position)
{
    // Each round makes more blocks known, hence there are few.
    for (;;) {
        const auto at = _position(position);
        if (!at)
            throw MOutOfRangeException("HDF5: there is no image " + std::to_string(position + 1) +
                                       ", the series has " + std::to_string(_frames) + ": " +
                                       (_master.empty() ? _blocks.front().place->file : _master));
        if (_certainty == Certainty::Estimated && (at->block > 0 || _asked)) {
            _countAll();
            continue;
        }
        _asked = true;
        FrameSetPtr set = _setOf(_blocks[at->block]);
        _blocks[at->block].frames = _blocks[at->block].frames.value_or(countable(*set));
        if (*_blocks[at->block].frames != _starts[at->block + 1] - _starts[at->block]) {
            _countAll();
            continue;
        }
        return {std::move(set), at->frame, _blocks[at->block].link};
    }
}

std::string BlockTable::path(std::size_t position)
{
    const auto at = _position(position);
    if (!at)
        return _master;
    try {
        Block& block = _blocks[at->block];
        const std::string file = _place(block).file;
        const FrameSetPtr set = FileState::of(file).exists() ? _sets->at(*block.place) : nullptr;
        return set && at->frame < set->frames() ? set->holder(at->frame) : file;
    } catch (const MException&) {
        const Block& block = _blocks[at->block];
        return block.place ? block.place->file : _master;
    }
}

std::optional<std::size_t> BlockTable::firstFrameIn(const std::string& file)
{
    const std::string wanted = baseName(file);
    for (std::size_t i = 0; i < _end; ++i) {
        if (!_leadsTo(_blocks[i], wanted))
            continue;
        if (_certainty == Certainty::Estimated && i > 0)
            _countAll();
        return _starts[i];
    }
    if (_end == 1)
        return _sets->at(_place(_blocks.front()))->firstFrameIn(file);
    return std::nullopt;
}

void BlockTable::update()
{
    // What was last may have grown, and what could not be opened may be whole by now.
    for (std::size_t i = _end - 1; i < _blocks.size(); ++i)
        _blocks[i].frames.reset();
    _firstFailure = nullptr;
    _findEnd();
    _settle();
}

}  // namespace morvend::imglib::hdf5
