// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The test for the signature, and a series as a whole: finds the master, reads header and
// mask, follows growing series.
#include "imagelib/io/formats/hdf5/nexus/NexusReader.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/frames/OpenFrameSets.h"
#include "imagelib/io/formats/hdf5/library/LinkedFailure.h"
#include "imagelib/io/formats/hdf5/nexus/BlockTable.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"
#include "imagelib/io/formats/hdf5/nexus/DataFinder.h"
#include "imagelib/io/formats/hdf5/nexus/MaskReader.h"
#include "imagelib/io/formats/hdf5/nexus/MetadataTree.h"
#include "imagelib/io/formats/hdf5/nexus/NexusHeader.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

namespace morvend::imglib {
namespace hdf5 {
namespace {

/// A series opened by its master, by any of its data files, or a single file of any known layout.
/// Thread: callers take turns.
class NexusSeries final : public ImageFile {
public:
    /// @throws MException when the file can't be read, holds no images or no frame yet
    /// @param dataset  the part of the file to show: a data set or a group by its path; empty
    /// for what the series shows by itself. With one, the file is taken alone, whatever its name
    NexusSeries(const std::string& path, const std::string& dataset);

    const char* format() const override { return "HDF5"; }
    std::size_t frameCount() const override { return _state->blocks.frames(); }
    /// A frame with its header and mask. If a mask is left out, the raw header begins with a
    /// line that says so, and standard error reports it once.
    MImage frame(std::size_t position) const override;
    std::string framePath(std::size_t position) const override
    {
        return _state->blocks.path(position);
    }
    std::string mainPath() const override { return _state->source; }
    std::string dataset() const override { return _state->dataset; }
    std::size_t openedFrame() const override { return _openedFrame; }
    int firstNumber() const override { return 1; }
    /// If a file is found in the middle of a write, the known state stays.
    void update() override;

private:
    /// All that is known from the files at one time.
    struct State {
        std::string source;   // the file of links and header: the master, if there is one
        std::string dataset;  // empty for what the file shows by itself
        FileStamp sourceState;
        std::vector<std::string> dataFiles;  // of a series without a master
        NexusHeader header;
        BlockTable blocks;
    };

    bool _openMaster(const std::string& path);
    State _load(const std::string& source);
    State _loadDataFiles(const std::string& path);
    bool _isOwnChoice(const Hdf5FilePtr& file, const ImageLinks& images);
    void _updateState();
    std::vector<std::string> _maskPaths() const;
    /// Adds the mask of an image, and the remark about it, to its header.
    void _addMask(MBasicImageOptionalData<>& header, const MImage& image,
                  std::size_t position) const;

    std::string _path;
    std::string _dataset;
    std::size_t _openedFrame = 0;
    // Reading opens files and counts blocks: so the state changes behind a const interface.
    mutable OpenFiles _files;
    mutable OpenFrameSets _sets{_files};
    mutable std::optional<State> _state;
    mutable std::optional<Mask> _mask;  // as it was read last
    mutable MImage _lastMask;     // the same pixels, with the identity of those before if unchanged
    mutable std::string _remark;  // about the mask, reported already
};

NexusSeries::NexusSeries(const std::string& path, const std::string& dataset)
    : _path(path)
    , _dataset(dataset)
{
    if (_dataset.empty() && _openMaster(path))
        return;
    if (_dataset.empty() && isDataFile(path) && dataFilesBeside(path).size() > 1)
        _state.emplace(_loadDataFiles(path));
    else
        _state.emplace(_load(path));
    if (frameCount() == 0)
        throw MRuntimeException("HDF5: the file holds no frames yet: " + path);
    _openedFrame = _state->blocks.firstFrameIn(path).value_or(0);
}

bool NexusSeries::_openMaster(const std::string& path)
{
    const std::string master = masterOf(path);
    if (master.empty())
        return false;
    try {
        _state.emplace(_load(master));
        if (const auto first = _state->blocks.firstFrameIn(path)) {
            _openedFrame = *first;
            return frameCount() > 0;
        }
    } catch (const MException&) {
        // A master that can't be read, or knows nothing of this file, leaves only the data files.
    }
    _state.reset();
    return false;
}

NexusSeries::State NexusSeries::_load(const std::string& source)
{
    const FileStamp sourceState(source);
    const Hdf5FilePtr file = _files.file(source);
    const ImageLinks images =
        _dataset.empty() ? findImages(_files, file) : findImagesAt(_files, file, _dataset);
    NexusHeader header(readMetadata(_files, file), images.entry, images.detector);
    BlockTable blocks(_sets, source, images.blocks, header.plannedImages());
    header.setImages(blocks.frames());
    std::string dataset = _isOwnChoice(file, images) ? std::string() : _dataset;
    return {source, std::move(dataset), sourceState, {}, std::move(header), std::move(blocks)};
}

bool NexusSeries::_isOwnChoice(const Hdf5FilePtr& file, const ImageLinks& images)
{
    try {
        return _dataset.empty() || findImages(_files, file).blocks == images.blocks;
    } catch (const MException&) {
        return false;  // by itself it shows none
    }
}

NexusSeries::State NexusSeries::_loadDataFiles(const std::string& path)
{
    const FileStamp sourceState(path);
    const Hdf5FilePtr file = _files.file(path);
    const ImageLinks images = findImages(_files, file);
    NexusHeader header(readMetadata(_files, file), images.entry, images.detector);
    std::vector<std::string> dataFiles = dataFilesBeside(path);
    std::vector<ObjectPath> datasets;
    for (const std::string& each : dataFiles)
        datasets.push_back({each, images.blocks.front()});
    BlockTable blocks(_sets, std::move(datasets));
    header.setImages(blocks.frames());
    return {path, {}, sourceState, std::move(dataFiles), std::move(header), std::move(blocks)};
}

MImage NexusSeries::frame(std::size_t position) const
{
    silenceErrors();
    const std::size_t known = frameCount();
    const FrameLocation found = _state->blocks.locate(position);
    if (frameCount() != known)
        _state->header.setImages(frameCount());
    MImage image =
        fromLink(found.link, _state->source, [&] { return found.set->read(found.frame, _sets); });
    MBasicImageOptionalData<> header = _state->header.of(position);
    _addMask(header, image, position);
    image.setOptionalData(header);
    return image;
}

void NexusSeries::_addMask(MBasicImageOptionalData<>& header, const MImage& image,
                           std::size_t position) const
{
    if (!_mask || _mask->ofFrame) {
        Mask mask = readMask(_sets, _state->source, _maskPaths(),
                             {image.width(), image.height(), position, frameCount()});
        // An unchanged mask keeps its identity, by which others recognise it.
        if (_lastMask.empty() || !samePixels(mask.image, _lastMask))
            _lastMask = mask.image;
        if (!mask.remark.empty() && mask.remark != _remark)
            std::fprintf(stderr, "WARNING: %s\n", mask.remark.c_str());
        _remark = mask.remark;
        _mask = std::move(mask);
    }
    if (!_remark.empty())
        header.set_rawHeader("WARNING: " + _remark + "\n" + header.rawHeader().value_or(""));
    if (!_lastMask.empty() && _lastMask.width() == image.width() &&
        _lastMask.height() == image.height())
        header.set_pixel_mask(_lastMask);
}

std::vector<std::string> NexusSeries::_maskPaths() const
{
    // When the mask itself is shown, no mask may hide it.
    std::vector<std::string> paths = _state->header.maskPaths();
    return std::ranges::find(paths, _dataset) == paths.end() ? paths : std::vector<std::string>();
}

void NexusSeries::update()
{
    silenceErrors();
    // An open file shows the state at its opening.
    _sets.close();
    _files.close();
    try {
        _updateState();
    } catch (const MException&) {
        // In the middle of a write a file may be unreadable; the next look will find it whole.
    }
}

void NexusSeries::_updateState()
{
    const bool changed = FileStamp(_state->source) != _state->sourceState;
    if (!_state->dataFiles.empty() && (changed || dataFilesBeside(_path) != _state->dataFiles)) {
        _state = _loadDataFiles(_path);
        return;
    }
    if (_state->dataFiles.empty() && changed) {
        _state = _load(_state->source);
        _mask.reset();
        return;
    }
    BlockTable blocks = _state->blocks;
    blocks.update();
    if (blocks.frames() != _state->blocks.frames())
        _state->header.setImages(blocks.frames());
    _state->blocks = std::move(blocks);
}

}  // namespace
}  // namespace hdf5

namespace {

constexpr char Signature[] = "\x89HDF\r\n\x1a\n";
constexpr std::size_t SignatureSize = sizeof(Signature) - 1;
constexpr std::uint64_t FirstUserBlock = 512;

bool hasSignature(const ByteSource& source)
{
    char bytes[SignatureSize];
    const std::uint64_t size = source.size();
    for (std::uint64_t at = 0; at < size; at = at ? 2 * at : FirstUserBlock)
        if (source.readSome(at, bytes, SignatureSize) == SignatureSize &&
            std::memcmp(bytes, Signature, SignatureSize) == 0)
            return true;
    return false;
}

}  // namespace

bool isHdf5(const ByteSource& source)
{
    if (!hasSignature(source))
        return false;
    if (!source.memory().empty())
        throw MRuntimeException("HDF5: the file is compressed as a whole and must be unpacked "
                                "before it can be read: " +
                                source.path());
    return true;
}

std::unique_ptr<ImageFile> openHdf5(std::shared_ptr<const ByteSource> source)
{
    return openHdf5At(std::move(source), {});
}

std::unique_ptr<ImageFile> openHdf5At(std::shared_ptr<const ByteSource> source,
                                      const std::string& dataset)
{
    return isHdf5(*source) ? std::make_unique<hdf5::NexusSeries>(source->path(), dataset) : nullptr;
}

}  // namespace morvend::imglib
