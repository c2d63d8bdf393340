// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Data sets by last use, and reading by the library where we can't do it.
#include "imagelib/io/formats/hdf5/frames/OpenFrameSets.h"

#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/frames/ChunkReader.h"
#include "imagelib/io/formats/hdf5/frames/VirtualLayout.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

/// No compression that HDF5 files use gives more than deflate's 1032 to 1.
constexpr std::uint64_t BestRatio = 1100;
/// Frames up to these sizes are not checked against the file's size: a frame that was never
/// written takes no room in it.
constexpr std::uint64_t AlwaysAllowed = std::uint64_t(256) << 20;
constexpr std::uint64_t AllowedElsewhere = std::uint64_t(1) << 30;
/// Each chunk is looked up by itself: frames of more of them would keep the reader busy for
/// minutes.
constexpr hsize_t MostChunks = hsize_t(1) << 17;

/// Frames of one data set in the way that its layout allows.
class FrameSet final : public FrameSource {
public:
    explicit FrameSet(OpenedObject object);

    MImage read(std::size_t frame, SourceOpener& sources) const override;
    std::string holder(std::size_t frame) const override;
    std::optional<std::size_t> firstFrameIn(const std::string& file) const override;

private:
    void _checkSize() const;
    void _checkChunks() const;
    void _readThroughLibrary(std::size_t frame, std::byte* pixels) const;
    /// What to say of a frame that the library can't read.
    std::string _whyUnreadable() const;

    std::unique_ptr<ChunkReader> _chunks;     // when chunks can be decoded here
    std::unique_ptr<VirtualLayout> _virtual;  // of a virtual data set
};

FrameSet::FrameSet(OpenedObject object)
    : FrameSource(std::move(object))
{
    const H5D_layout_t layout = H5Pget_layout(creation());
    if (layout == H5D_CHUNKED)
        _chunks = ChunkReader::make(*this);
    else if (layout == H5D_VIRTUAL)
        _virtual = std::make_unique<VirtualLayout>(*this);
}

void FrameSet::_checkSize() const
{
    const std::uint64_t bytes = shape().framePixels() * format().pixelBytes();
    const bool elsewhere = _virtual || H5Pget_external_count(creation()) > 0;
    if (bytes > (elsewhere ? AllowedElsewhere : AlwaysAllowed) &&
        (elsewhere || bytes / BestRatio > file()->size()))
        throw MRuntimeException("HDF5: " + path() + " announces frames of " +
                                std::to_string(bytes) + " bytes, more than the file of " +
                                std::to_string(file()->size()) +
                                " bytes can hold: " + file()->path());
    _checkChunks();
}

void FrameSet::_checkChunks() const
{
    std::vector<hsize_t> extents(shape().rank);
    if (H5Pget_layout(creation()) != H5D_CHUNKED ||
        H5Pget_chunk(creation(), static_cast<int>(shape().rank), extents.data()) !=
            static_cast<int>(shape().rank))
        return;
    const FrameShape chunk(extents);
    const auto along = [](hsize_t extent, hsize_t each) { return (extent - 1) / each + 1; };
    // A frame has below 2^31 pixels, hence its chunks can't overflow the product.
    const hsize_t chunks = along(shape().modules, chunk.modules) * along(shape().rows, chunk.rows) *
                           along(shape().columns, chunk.columns);
    if (chunks > MostChunks)
        throw MRuntimeException("HDF5: each frame of " + path() + " lies in " +
                                std::to_string(chunks) + " chunks of " +
                                std::to_string(chunk.columns) + " x " + std::to_string(chunk.rows) +
                                " pixels, too many to be read: " + file()->path());
}

MImage FrameSet::read(std::size_t frame, SourceOpener& sources) const
{
    if (frame >= frames())
        throw MOutOfRangeException("HDF5: " + path() + " has " + std::to_string(frames()) +
                                   " frames, there is no frame " + std::to_string(frame + 1) +
                                   ": " + file()->path());
    _checkSize();
    if (_virtual)
        if (auto image = _virtual->read(frame, sources))
            return std::move(*image);
    MImage image(shape().width(), shape().height(), format().type(), format().bits());
    auto* pixels = static_cast<std::byte*>(image.data());
    if (_chunks)
        _chunks->read(frame, pixels, sources.chunks());
    else
        _readThroughLibrary(frame, pixels);
    return image;
}

std::string FrameSet::holder(std::size_t frame) const
{
    return _virtual ? _virtual->holder(frame) : file()->path();
}

std::optional<std::size_t> FrameSet::firstFrameIn(const std::string& file) const
{
    return _virtual ? _virtual->firstFrameIn(file) : std::nullopt;
}

void FrameSet::_readThroughLibrary(std::size_t frame, std::byte* pixels) const
{
    const std::size_t count = shape().framePixels();
    const auto start = shape().coordinates(frame, 0, 0, 0);
    const auto extents = shape().frameExtents();
    // Of the shape of the selection: otherwise the library matches chunks pixel by pixel.
    const Dataspace memory(
        H5Screate_simple(static_cast<int>(shape().rank), extents.data(), nullptr));
    const Dataspace stored(H5Dget_space(id()));
    if (H5Sselect_hyperslab(stored.id(), H5S_SELECT_SET, start.data(), nullptr, extents.data(),
                            nullptr) < 0)
        fail(frame, "can't be selected");
    image::PixelBufferPtr scratch;
    std::byte* target = pixels;
    if (!format().inPlace()) {
        scratch = image::PixelBuffer::allocate(count * format().storedBytes());
        target = scratch->data();
    }
    if (H5Dread(id(), format().fileType(), memory.id(), stored.id(), H5P_DEFAULT, target) < 0)
        fail(frame, _whyUnreadable());
    format().convert({target, count * format().storedBytes()}, pixels);
}

std::string FrameSet::_whyUnreadable() const
{
    const std::string reason = takeErrorText();
    std::string missing;
    const int count = H5Pget_nfilters(creation());
    for (int i = 0; i < count; ++i) {
        std::size_t values = 0;
        unsigned flags = 0;
        const H5Z_filter_t id = H5Pget_filter2(creation(), static_cast<unsigned>(i), &flags,
                                               &values, nullptr, 0, nullptr, nullptr);
        if (id >= 0 && H5Zfilter_avail(id) <= 0)
            missing += (missing.empty() ? ", because " : " and ") +
                       codec::filterText(static_cast<unsigned>(id)) + " is not installed";
    }
    takeErrorText();
    return missing.empty() ? withReason("can't be read", reason) : "can't be read" + missing;
}

}  // namespace

FrameSourcePtr OpenFrameSets::at(const ObjectPath& path)
{
    const auto known = std::find_if(_open.begin(), _open.end(), [&](const Entry& each) {
        return each.path.path == path.path && each.path.file == path.file;
    });
    const Hdf5FilePtr file = _files.file(path.file);
    if (known != _open.end()) {
        const Hdf5FilePtr& holds = known->set->file();
        if (known->asked == file && (holds == file || holds->current())) {
            _open.splice(_open.begin(), _open, known);
            return _open.front().set;
        }
        _open.erase(known);
    }
    std::optional<OpenedObject> found = _files.find(file, path.path);
    if (!found || !found->isDataset())
        throw MRuntimeException("HDF5: there is no data set " + path.path + ": " + path.file);
    _open.push_front({path, file, std::make_shared<const FrameSet>(std::move(*found))});
    if (_open.size() > MostOpen)
        _open.pop_back();
    return _open.front().set;
}

void OpenFrameSets::close()
{
    _open.clear();
    _chunks.clear();
}

}  // namespace morvend::imglib::hdf5
