// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finding of the master, reading of header and mask, watching of growing series.
#include "imagelib/io/formats/hdf5/nexus/NexusMaster.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/LinkedFailure.h"
#include "imagelib/io/formats/hdf5/nexus/DataFileNames.h"
#include "imagelib/io/formats/hdf5/nexus/MetadataTree.h"

#include <algorithm>
#include <cstdio>

namespace morvend::imglib::hdf5 {

NexusMaster::NexusMaster(const std::string& path, const std::string& dataset)
    : _path(path)
    , _dataset(dataset)
{
    if (_dataset.empty() && _openMaster(path))
        return;
    if (_dataset.empty() && isDataFile(path) && dataFilesBeside(path).size() > 1)
        _state.emplace(_loadDataFiles(path));
    else
        _state.emplace(_load(path));
    if (frames() == 0)
        throw MRuntimeException("HDF5: the file holds no frames yet: " + path);
    _openedFrame = _state->blocks.firstFrameIn(path).value_or(0);
}

bool NexusMaster::_openMaster(const std::string& path)
{
    const std::string master = masterOf(path);
    if (master.empty())
        return false;
    try {
        _state.emplace(_load(master));
        if (const auto first = _state->blocks.firstFrameIn(path)) {
            _openedFrame = *first;
            return frames() > 0;
        }
    } catch (const MException&) {
        // A master that can't be read, or knows nothing of this file, leaves the data files.
    }
    _state.reset();
    return false;
}

NexusMaster::State NexusMaster::_load(const std::string& source)
{
    const FileState sourceState = FileState::of(source);
    const Hdf5FilePtr file = _files.file(source);
    const ImageLinks images =
        _dataset.empty() ? findImages(_files, file) : findImagesAt(_files, file, _dataset);
    NexusHeader header(readMetadata(_files, file), images.entry, images.detector);
    BlockTable blocks(_sets, source, images.blocks, header.plannedImages());
    header.setImages(blocks.frames());
    std::string dataset = _isOwnChoice(file, images) ? std::string() : _dataset;
    return {source, std::move(dataset), sourceState, {}, std::move(header), std::move(blocks)};
}

bool NexusMaster::_isOwnChoice(const Hdf5FilePtr& file, const ImageLinks& images)
{
    try {
        return _dataset.empty() || findImages(_files, file).blocks == images.blocks;
    } catch (const MException&) {
        return false;  // it shows none by itself
    }
}

NexusMaster::State NexusMaster::_loadDataFiles(const std::string& path)
{
    const FileState sourceState = FileState::of(path);
    const Hdf5FilePtr file = _files.file(path);
    const ImageLinks images = findImages(_files, file);
    NexusHeader header(readMetadata(_files, file), images.entry, images.detector);
    std::vector<std::string> dataFiles = dataFilesBeside(path);
    std::vector<Place> places;
    for (const std::string& each : dataFiles)
        places.push_back({each, images.blocks.front()});
    BlockTable blocks(_sets, std::move(places));
    header.setImages(blocks.frames());
    return {path, {}, sourceState, std::move(dataFiles), std::move(header), std::move(blocks)};
}

MImage NexusMaster::frame(std::size_t position)
{
    quiet();
    const std::size_t known = frames();
    const BlockTable::Spot spot = _state->blocks.spot(position);
    if (frames() != known)
        _state->header.setImages(frames());
    MImage image =
        fromLink(spot.link, _state->source, [&] { return spot.set->read(spot.frame, _sets); });
    MBasicImageOptionalData<> header = _state->header.of(position);
    _addMask(header, image, position);
    image.setOptionalData(header);
    return image;
}

void NexusMaster::_addMask(MBasicImageOptionalData<>& header, const MImage& image,
                           std::size_t position)
{
    if (!_mask || _mask->ofFrame) {
        Mask mask = readMask(_sets, _state->source, _maskPaths(),
                             {image.width(), image.height(), position, frames()});
        // An unchanged mask keeps its identity, by which others know that they know it.
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

std::vector<std::string> NexusMaster::_maskPaths() const
{
    // A mask that is looked at must not hide what it is made of.
    std::vector<std::string> paths = _state->header.maskPaths();
    return std::ranges::find(paths, _dataset) == paths.end() ? paths : std::vector<std::string>();
}

void NexusMaster::update()
{
    quiet();
    // An open file shows the state at its opening.
    _sets.close();
    _files.close();
    try {
        _updateState();
    } catch (const MException&) {
        // In the middle of a write a file reads badly; the next look will find it whole.
    }
}

void NexusMaster::_updateState()
{
    const bool changed = FileState::of(_state->source) != _state->sourceState;
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

}  // namespace morvend::imglib::hdf5
