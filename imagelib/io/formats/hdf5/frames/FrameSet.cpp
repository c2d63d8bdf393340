// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Opening of a data set of frames, and reading by the library where we don't do it ourselves.
#include "imagelib/io/formats/hdf5/frames/FrameSet.h"

#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/frames/ChunkReader.h"
#include "imagelib/io/formats/hdf5/frames/FrameSets.h"
#include "imagelib/io/formats/hdf5/frames/VirtualLayout.h"
#include "imagelib/io/formats/hdf5/library/ExternalFiles.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"

#include <algorithm>
#include <cstring>

namespace morvend::imglib::hdf5 {

namespace {

/// No compression that HDF5 files use gives more than deflate's 1032 to 1.
constexpr std::uint64_t BestRatio = 1100;
/// Frames up to these sizes need no proof that the file can hold them: a frame that was never
/// written takes no room in it.
constexpr std::uint64_t AlwaysAllowed = std::uint64_t(256) << 20;
constexpr std::uint64_t AllowedElsewhere = std::uint64_t(1) << 30;
/// Each chunk is looked up by itself: frames of more of them would keep the reader busy for
/// minutes.
constexpr hsize_t MostChunks = hsize_t(1) << 17;

FrameShape shapeOf(hid_t dataset, const std::string& path, const std::string& file)
{
    const auto extents = datasetExtents(dataset);
    if (!extents)
        fail("the extents of " + path + " can't be read", file);
    if (extents->size() < FrameShape::SmallestRank || extents->size() > FrameShape::LargestRank)
        throw MRuntimeException("HDF5: " + path + " has " + std::to_string(extents->size()) +
                                " dimensions and can't be shown as images: " + file);
    return FrameShape(*extents);
}

PixelFormat formatOf(hid_t dataset, const std::string& file)
{
    const Datatype type(H5Dget_type(dataset), "a data type can't be read", file);
    return PixelFormat(type.id(), file);
}

}  // namespace

FrameSet::FrameSet(Found found)
    : _file(std::move(found.file))
    , _path(std::move(found.path))
    , _dataset(std::move(found.object))
    , _creation(H5Dget_create_plist(_dataset.id()), _path + " can't be read", _file->path())
    , _shape(shapeOf(_dataset.id(), _path, _file->path()))
    , _format(formatOf(_dataset.id(), _file->path()))
{
    _shape.checkFrame(_path, _file->path());
    checkExternalFiles(_creation.id(), _path, _file->path());
    const H5D_layout_t layout = H5Pget_layout(_creation.id());
    if (layout == H5D_CHUNKED)
        _chunks = ChunkReader::make(*this);
    else if (layout == H5D_VIRTUAL)
        _virtual = std::make_unique<VirtualLayout>(*this);
}

FrameSet::~FrameSet() = default;

void FrameSet::_checkSize() const
{
    const std::uint64_t bytes = _shape.framePixels() * _format.pixelBytes();
    const bool elsewhere = _virtual || H5Pget_external_count(_creation.id()) > 0;
    if (bytes > (elsewhere ? AllowedElsewhere : AlwaysAllowed) &&
        (elsewhere || bytes / BestRatio > _file->size()))
        throw MRuntimeException("HDF5: " + _path + " announces frames of " + std::to_string(bytes) +
                                " bytes, more than the file of " + std::to_string(_file->size()) +
                                " bytes can hold: " + _file->path());
    _checkChunks();
}

void FrameSet::_checkChunks() const
{
    std::vector<hsize_t> extents(_shape.rank);
    if (H5Pget_layout(_creation.id()) != H5D_CHUNKED ||
        H5Pget_chunk(_creation.id(), static_cast<int>(_shape.rank), extents.data()) !=
            static_cast<int>(_shape.rank))
        return;
    const FrameShape chunk(extents);
    const auto along = [](hsize_t extent, hsize_t each) { return (extent - 1) / each + 1; };
    // A frame has below 2^31 pixels, hence its chunks can't overflow the product.
    const hsize_t chunks = along(_shape.modules, chunk.modules) * along(_shape.rows, chunk.rows) *
                           along(_shape.columns, chunk.columns);
    if (chunks > MostChunks)
        throw MRuntimeException("HDF5: each frame of " + _path + " lies in " +
                                std::to_string(chunks) + " chunks of " +
                                std::to_string(chunk.columns) + " x " + std::to_string(chunk.rows) +
                                " pixels, too many to be read: " + _file->path());
}

MImage FrameSet::read(std::size_t frame, FrameSets& sets) const
{
    if (frame >= frames())
        throw MOutOfRangeException("HDF5: " + _path + " has " + std::to_string(frames()) +
                                   " frames, there is no frame " + std::to_string(frame + 1) +
                                   ": " + _file->path());
    _checkSize();
    if (_virtual)
        if (auto image = _virtual->read(frame, sets))
            return std::move(*image);
    MImage image(_shape.width(), _shape.height(), _format.type(), _format.bits());
    auto* pixels = static_cast<std::byte*>(image.data());
    if (_chunks)
        _chunks->read(frame, pixels, sets.chunks());
    else
        _readThroughLibrary(frame, pixels);
    return image;
}

std::string FrameSet::holder(std::size_t frame) const
{
    return _virtual ? _virtual->holder(frame) : _file->path();
}

std::optional<std::size_t> FrameSet::firstFrameIn(const std::string& file) const
{
    return _virtual ? _virtual->firstFrameIn(file) : std::nullopt;
}

void FrameSet::_readThroughLibrary(std::size_t frame, std::byte* pixels) const
{
    const std::size_t count = _shape.framePixels();
    const auto start = _shape.coordinates(frame, 0, 0, 0);
    const auto extents = _shape.frameExtents();
    // Of the shape of the selection: otherwise the library matches chunks pixel by pixel.
    const Dataspace memory(
        H5Screate_simple(static_cast<int>(_shape.rank), extents.data(), nullptr));
    const Dataspace stored(H5Dget_space(_dataset.id()));
    if (H5Sselect_hyperslab(stored.id(), H5S_SELECT_SET, start.data(), nullptr, extents.data(),
                            nullptr) < 0)
        fail(frame, "can't be selected");
    image::PixelBufferPtr scratch;
    std::byte* target = pixels;
    if (!_format.inPlace()) {
        scratch = image::PixelBuffer::allocate(count * _format.storedBytes());
        target = scratch->data();
    }
    if (H5Dread(_dataset.id(), _format.fileType(), memory.id(), stored.id(), H5P_DEFAULT, target) <
        0)
        fail(frame, "can't be read" + _missingFilters());
    _format.convert({target, count * _format.storedBytes()}, pixels);
}

std::string FrameSet::_missingFilters() const
{
    const std::string reason = takeErrorText();
    std::string missing;
    const int count = H5Pget_nfilters(_creation.id());
    for (int i = 0; i < count; ++i) {
        std::size_t values = 0;
        unsigned flags = 0;
        const H5Z_filter_t id = H5Pget_filter2(_creation.id(), static_cast<unsigned>(i), &flags,
                                               &values, nullptr, 0, nullptr, nullptr);
        if (id >= 0 && H5Zfilter_avail(id) <= 0)
            missing += (missing.empty() ? ", because " : " and ") +
                       codec::filterText(static_cast<unsigned>(id)) + " is not installed";
    }
    takeErrorText();
    return missing.empty() && !reason.empty() ? ": " + reason : missing;
}

void FrameSet::fail(std::size_t frame, const std::string& what) const
{
    hdf5::fail("frame " + std::to_string(frame + 1) + " of " + _path + " " + what, _file->path());
}

void FrameSet::fill(std::byte* pixels, std::size_t count) const
{
    std::byte stored[16] = {};
    std::byte value[16] = {};
    H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
    if (H5Pfill_value_defined(_creation.id(), &defined) >= 0 &&
        defined == H5D_FILL_VALUE_USER_DEFINED &&
        H5Pget_fill_value(_creation.id(), _format.fileType(), stored) >= 0)
        _format.convert({stored, _format.storedBytes()}, value);
    takeErrorText();
    const std::size_t size = _format.pixelBytes();
    if (count == 0)
        return;
    // Doubles what is filled already.
    std::memcpy(pixels, value, size);
    for (std::size_t done = size; done < count * size; done *= 2)
        std::memcpy(pixels + done, pixels, std::min(done, count * size - done));
}

}  // namespace morvend::imglib::hdf5
