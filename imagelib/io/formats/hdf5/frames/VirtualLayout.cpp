// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From a frame to the rectangles of its sources, and the copying of those rectangles.
#include "imagelib/io/formats/hdf5/frames/VirtualLayout.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/ExternalFiles.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <tuple>

namespace morvend::imglib::hdf5 {

namespace {

/// The points start + i * stride + j with i < count and j < block, in this order.
struct HyperslabRange {
    static constexpr hsize_t Endless = std::numeric_limits<hsize_t>::max();

    hsize_t start = 0;
    hsize_t stride = 1;
    hsize_t count = 1;
    hsize_t block = 1;

    /// Number of points; Endless for a selection that grows with its data set.
    hsize_t points() const
    {
        const bool overflow = block != 0 && count > Endless / block;
        return overflow ? Endless : count * block;
    }
    /// The number of a coordinate among the points; nothing when it isn't one of them.
    std::optional<hsize_t> ordinal(hsize_t coordinate) const
    {
        if (coordinate < start || stride == 0)
            return std::nullopt;
        const hsize_t along = coordinate - start;
        if (count == 1)
            return along < block ? std::optional(along) : std::nullopt;
        if (along / stride >= count || along % stride >= block)
            return std::nullopt;
        return along / stride * block + along % stride;
    }
    /// The coordinate of a point. Endless when there is no such coordinate.
    hsize_t at(hsize_t ordinal) const
    {
        if (block == 0 || ordinal >= points())
            return Endless;
        const hsize_t step = ordinal / block;
        if (stride != 0 && step > (Endless - start - block) / stride)
            return Endless;
        return start + step * stride + ordinal % block;
    }
    /// True if there are no gaps between the points.
    bool contiguous() const { return count == 1 || stride == block; }

    /// The selection of a data space, one range a dimension; nothing when it is not regular.
    static std::optional<std::vector<HyperslabRange>> of(hid_t space);
};

static_assert(H5S_UNLIMITED == HyperslabRange::Endless);

std::optional<std::vector<HyperslabRange>> HyperslabRange::of(hid_t space)
{
    const auto shape = extents(space);
    if (!shape || shape->empty())
        return std::nullopt;
    const std::size_t rank = shape->size();
    std::vector<HyperslabRange> ranges(rank);
    const H5S_sel_type kind = H5Sget_select_type(space);
    if (kind == H5S_SEL_ALL) {
        for (std::size_t i = 0; i < rank; ++i)
            ranges[i].block = (*shape)[i];
        return ranges;
    }
    if (kind != H5S_SEL_HYPERSLABS || H5Sis_regular_hyperslab(space) <= 0)
        return std::nullopt;
    std::vector<hsize_t> start(rank), stride(rank), count(rank), block(rank);
    if (H5Sget_regular_hyperslab(space, start.data(), stride.data(), count.data(), block.data()) <
        0)
        return std::nullopt;
    for (std::size_t i = 0; i < rank; ++i)
        ranges[i] = {start[i], stride[i], count[i], block[i]};
    return ranges;
}

constexpr std::size_t MostMappings = 1'000'000;
constexpr hsize_t MostNamedBlocks = 1'000'000;

/// A name of a source, by a call of the library that first reports its length.
template <class Get>
std::string nameBy(Get get)
{
    const ssize_t length = get(nullptr, 0);
    if (length <= 0)
        return {};
    std::string name(static_cast<std::size_t>(length) + 1, '\0');
    get(name.data(), name.size());
    name.pop_back();
    return name;
}

bool isNumbered(const std::string& name) { return name.find("%b") != std::string::npos; }

/// Replaces each "%b" by the number of a block; "%%" stands for a percent sign.
std::string numbered(const std::string& name, hsize_t block)
{
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] != '%' || i + 1 == name.size()) {
            result += name[i];
        } else {
            result += name[i + 1] == 'b' ? std::to_string(block) : std::string(1, name[i + 1]);
            ++i;
        }
    }
    return result;
}

/// Points along the dimensions before rows and columns; of a numbered mapping each source
/// serves one block of the first dimension.
std::vector<hsize_t> leadingPoints(const std::vector<HyperslabRange>& ranges, bool perBlock)
{
    std::vector<hsize_t> points;
    for (std::size_t i = 0; i + 2 < ranges.size(); ++i)
        points.push_back(perBlock && i == 0 ? ranges[i].block : ranges[i].points());
    std::erase(points, hsize_t(1));
    return points;
}

}  // namespace

/// A box of the virtual data set and the equally large one of a source.
struct VirtualLayout::Mapping {
    std::string file;  // may hold "%b", the number of the block of an endless selection
    std::string path;
    std::vector<HyperslabRange> target;
    std::vector<HyperslabRange> source;  // empty: the whole data set, whatever its extents
};
/// A rectangle of a source frame, and where in the image it goes.
struct VirtualLayout::SourceRectangle {
    ObjectPath source;
    bool ofWhole = false;  // then `frame` counts modules too, until the source is known
    hsize_t frame = 0;
    hsize_t module = 0;
    hsize_t fromRow = 0, fromColumn = 0;
    hsize_t toRow = 0, toColumn = 0;
    hsize_t rows = 0, columns = 0;
};

VirtualLayout::VirtualLayout(const FrameSource& set)
    : _set(set)
{
    std::size_t count = 0;
    if (H5Pget_virtual_count(set.creation(), &count) < 0 || count > MostMappings)
        hdf5::fail("the mappings of " + set.path() + " can't be read", set.file()->path());
    for (std::size_t i = 0; i < count; ++i)
        _addMapping(i);
}

VirtualLayout::~VirtualLayout() = default;

void VirtualLayout::_addMapping(std::size_t index)
{
    const hid_t creation = _set.creation();
    Mapping mapping;
    mapping.file = nameBy([&](char* name, std::size_t size) {
        return H5Pget_virtual_filename(creation, index, name, size);
    });
    mapping.path = nameBy([&](char* name, std::size_t size) {
        return H5Pget_virtual_dsetname(creation, index, name, size);
    });
    const Dataspace target(H5Pget_virtual_vspace(creation, index));
    const Dataspace source(H5Pget_virtual_srcspace(creation, index));
    const auto targetRanges = HyperslabRange::of(target.id());
    const auto sourceRanges = HyperslabRange::of(source.id());
    const bool whole = H5Sget_select_type(source.id()) == H5S_SEL_ALL;
    if (targetRanges && (sourceRanges || whole)) {
        mapping.target = *targetRanges;
        // The file doesn't hold the extents of a source that is used whole.
        mapping.source = whole ? std::vector<HyperslabRange>() : *sourceRanges;
    }
    takeErrorText();
    _regular = _regular && _followable(mapping);
    _mappings.push_back(std::move(mapping));
}

bool VirtualLayout::_followable(const Mapping& mapping)
{
    const auto& target = mapping.target;
    const auto& source = mapping.source;
    constexpr std::size_t least = FrameShape::SmallestRank;
    constexpr std::size_t most = FrameShape::LargestRank;
    const bool whole = source.empty();
    if (target.size() < least || (!whole && (source.size() < least || source.size() > most)))
        return false;
    for (std::size_t back = 1; back <= 2; ++back) {
        const HyperslabRange& to = target[target.size() - back];
        if (!to.contiguous() || to.points() == HyperslabRange::Endless)
            return false;
        if (whole)
            continue;
        const HyperslabRange& from = source[source.size() - back];
        if (to.points() != from.points() || !from.contiguous())
            return false;
    }
    const bool perBlock = isNumbered(mapping.file) || isNumbered(mapping.path);
    return whole || leadingPoints(target, perBlock) == leadingPoints(source, false);
}

void VirtualLayout::_setOrigin(SourceRectangle& rectangle, const Mapping& mapping, hsize_t index)
{
    const auto& source = mapping.source;
    rectangle.ofWhole = source.empty();
    if (rectangle.ofWhole) {
        rectangle.frame = index;
        return;
    }
    if (source.size() > 3) {
        const hsize_t points = std::max<hsize_t>(source[1].points(), 1);
        rectangle.module = source[1].at(index % points);
        index /= points;
    }
    if (source.size() > 2)
        rectangle.frame = source[0].at(index);
    rectangle.fromRow = source[source.size() - 2].start;
    rectangle.fromColumn = source[source.size() - 1].start;
}

ObjectPath VirtualLayout::_sourceOf(const Mapping& mapping, hsize_t block) const
{
    const std::string& own = _set.file()->path();
    std::string path = numbered(mapping.path, block);
    if (!path.starts_with('/'))
        path.insert(0, 1, '/');
    const std::string file = numbered(mapping.file, block);
    if (file == ".")
        return {own, path};
    const std::string located = OpenFiles::locate(own, file);
    // Some writers store their own file's name, which a renamed file no longer has.
    if (!FileStamp(located).exists() && path != _set.path() &&
        H5Lexists(_set.file()->id(), path.c_str(), H5P_DEFAULT) > 0)
        return {own, path};
    takeErrorText();
    return {located, path};
}

void VirtualLayout::_addRectangles(const Mapping& mapping, std::size_t frame,
                                   std::vector<SourceRectangle>& rectangles) const
{
    const auto& target = mapping.target;
    hsize_t ordinal = 0;
    if (target.size() > 2) {
        const auto found = target[0].ordinal(frame);
        if (!found)
            return;
        ordinal = *found;
    }
    hsize_t block = 0;
    if (isNumbered(mapping.file) || isNumbered(mapping.path)) {
        block = ordinal / std::max<hsize_t>(target[0].block, 1);
        ordinal %= std::max<hsize_t>(target[0].block, 1);
    }
    const HyperslabRange module = target.size() > 3 ? target[1] : HyperslabRange();
    const HyperslabRange& toRows = target[target.size() - 2];
    const HyperslabRange& toColumns = target[target.size() - 1];
    const hsize_t modules = std::min(module.points(), _set.shape().modules);
    for (hsize_t each = 0; each < modules; ++each) {
        SourceRectangle rectangle;
        rectangle.source = _sourceOf(mapping, block);
        _setOrigin(rectangle, mapping, ordinal * module.points() + each);
        rectangle.toRow = module.at(each) * _set.shape().rows + toRows.start;
        rectangle.toColumn = toColumns.start;
        rectangle.rows = toRows.points();
        rectangle.columns = toColumns.points();
        rectangles.push_back(std::move(rectangle));
    }
}

std::vector<VirtualLayout::SourceRectangle> VirtualLayout::_rectanglesOf(std::size_t frame) const
{
    std::vector<SourceRectangle> rectangles;
    for (const Mapping& mapping : _mappings)
        _addRectangles(mapping, frame, rectangles);
    return rectangles;
}

std::optional<MImage> VirtualLayout::read(std::size_t frame, SourceOpener& sources) const
{
    const SourceOpener::Level level(sources, _set.file()->path());
    if (!_regular) {
        _openAllSources(sources);
        return std::nullopt;
    }
    std::vector<SourceRectangle> rectangles = _rectanglesOf(frame);
    // Parts of one source frame often follow each other: the chips of a module with their gaps.
    std::map<std::tuple<std::string, std::string, hsize_t>, MImage> read;
    MImage image;
    for (SourceRectangle& rectangle : rectangles) {
        const FrameSourcePtr source = sources.at(rectangle.source);
        if (rectangle.ofWhole) {
            rectangle.module = rectangle.frame % source->shape().modules;
            rectangle.frame /= source->shape().modules;
        }
        _checkFits(rectangle, *source);
        MImage& from = read[{rectangle.source.file, rectangle.source.path, rectangle.frame}];
        if (from.empty())
            from = source->read(static_cast<std::size_t>(rectangle.frame), sources);
        if (rectangles.size() == 1 && _isWholeFrame(rectangle, *source))
            return from;
        if (image.empty()) {
            image = MImage(_set.shape().width(), _set.shape().height(), _set.format().type(),
                           _set.format().bits());
            _set.fill(static_cast<std::byte*>(image.data()), image.size());
        }
        _copy(rectangle, *source, from, static_cast<std::byte*>(image.data()));
    }
    if (image.empty()) {
        image = MImage(_set.shape().width(), _set.shape().height(), _set.format().type(),
                       _set.format().bits());
        _set.fill(static_cast<std::byte*>(image.data()), image.size());
    }
    return image;
}

bool VirtualLayout::_isWholeFrame(const SourceRectangle& rectangle, const FrameSource& source) const
{
    const FrameShape& mine = _set.shape();
    const FrameShape& theirs = source.shape();
    return mine.modules == 1 && theirs.modules == 1 && rectangle.rows == mine.rows &&
           rectangle.columns == mine.columns && theirs.rows == mine.rows &&
           theirs.columns == mine.columns && source.format().sameAs(_set.format());
}

void VirtualLayout::_checkFits(const SourceRectangle& rectangle, const FrameSource& source) const
{
    const FrameShape& from = source.shape();
    const FrameShape& to = _set.shape();
    const auto within = [](hsize_t start, hsize_t count, hsize_t extent) {
        return start <= extent && count <= extent - start;
    };
    if (rectangle.frame >= from.frames)
        throw MRuntimeException("HDF5: " + source.path() + " has " + std::to_string(from.frames) +
                                " frames, " + _set.path() + " of " + _set.file()->path() +
                                " asks it for more: " + source.file()->path());
    if (rectangle.module >= from.modules || !within(rectangle.fromRow, rectangle.rows, from.rows) ||
        !within(rectangle.fromColumn, rectangle.columns, from.columns) ||
        !within(rectangle.toRow, rectangle.rows, to.modules * to.rows) ||
        !within(rectangle.toColumn, rectangle.columns, to.columns))
        throw MRuntimeException("HDF5: " + _set.path() + " of " + _set.file()->path() +
                                " does not fit the frames of " + source.path() + ": " +
                                source.file()->path());
}

void VirtualLayout::_copy(const SourceRectangle& rectangle, const FrameSource& source,
                          const MImage& from, std::byte* pixels) const
{
    const PixelFormat& to = _set.format();
    const bool same = source.format().sameAs(to);
    const std::size_t columns = static_cast<std::size_t>(rectangle.columns);
    const std::size_t fromSize = source.format().pixelBytes();
    const std::size_t toSize = to.pixelBytes();
    std::vector<std::byte> row(columns * std::max(fromSize, toSize));
    const auto* stored = static_cast<const std::byte*>(from.cdata());
    for (hsize_t y = 0; y < rectangle.rows; ++y) {
        const hsize_t fromRow = rectangle.module * source.shape().rows + rectangle.fromRow + y;
        const std::byte* begin =
            stored + (fromRow * source.shape().columns + rectangle.fromColumn) * fromSize;
        std::byte* end =
            pixels + ((rectangle.toRow + y) * _set.shape().columns + rectangle.toColumn) * toSize;
        if (same) {
            std::memcpy(end, begin, columns * toSize);
            continue;
        }
        std::memcpy(row.data(), begin, columns * fromSize);
        check(H5Tconvert(source.format().memoryType(), to.memoryType(), columns, row.data(),
                         nullptr, H5P_DEFAULT),
              "pixels can't be converted", _set.file()->path());
        std::memcpy(end, row.data(), columns * toSize);
    }
}

void VirtualLayout::_openAllSources(SourceOpener& sources) const
{
    const std::string who = _set.path() + " of " + _set.file()->path();
    for (const Mapping& mapping : _mappings) {
        if (isNumbered(mapping.file) || isNumbered(mapping.path))
            throw MRuntimeException("HDF5: the numbered sources of " + who +
                                    " are selected in a way that can't be followed");
        const ObjectPath source = _sourceOf(mapping, 0);
        const auto found = sources.files().find(sources.files().file(source.file), source.path);
        if (!found || !found->isDataset())
            throw MRuntimeException("HDF5: there is no data set " + source.path +
                                    ", of which frames are made: " + source.file);
        // The library would follow virtual sources without end if they refer to each other.
        const Properties creation(H5Dget_create_plist(found->object.id()));
        if (H5Pget_layout(creation.id()) == H5D_VIRTUAL)
            throw MRuntimeException("HDF5: virtual sources are selected by " + who +
                                    " in a way that can't be followed: " + source.file);
        checkExternalFiles(creation.id(), source.path, source.file);
    }
}

std::string VirtualLayout::holder(std::size_t frame) const
{
    if (_regular)
        if (const std::vector<SourceRectangle> rectangles = _rectanglesOf(frame);
            !rectangles.empty())
            return rectangles.front().source.file;
    return _set.file()->path();
}

std::optional<std::size_t> VirtualLayout::firstFrameIn(const std::string& file) const
{
    const std::string wanted = baseName(file);
    std::optional<std::size_t> first;
    for (const Mapping& mapping : _mappings) {
        if (!_followable(mapping))
            continue;
        const HyperslabRange frames =
            mapping.target.size() > 2 ? mapping.target[0] : HyperslabRange();
        const hsize_t blocks = isNumbered(mapping.file)
                                   ? std::min({frames.count, MostNamedBlocks, _set.shape().frames})
                                   : 1;
        for (hsize_t block = 0; block < blocks; ++block) {
            if (baseName(numbered(mapping.file, block)) != wanted)
                continue;
            const hsize_t frame = frames.at(block * frames.block);
            if (frame < _set.shape().frames && (!first || frame < *first))
                first = static_cast<std::size_t>(frame);
        }
    }
    return first;
}

}  // namespace morvend::imglib::hdf5
