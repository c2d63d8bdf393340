// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What extents, elements and fill value of an opened data set mean.
#include "imagelib/io/formats/hdf5/frames/FrameSource.h"

#include "imagelib/image/MException.h"
#include "imagelib/io/formats/hdf5/library/ExternalFiles.h"
#include "imagelib/io/formats/hdf5/library/SmallValues.h"

#include <algorithm>
#include <cstring>

namespace morvend::imglib::hdf5 {

namespace {

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

FrameSource::FrameSource(OpenedObject object)
    : _file(std::move(object.file))
    , _path(std::move(object.path))
    , _dataset(std::move(object.object))
    , _creation(H5Dget_create_plist(_dataset.id()), _path + " can't be read", _file->path())
    , _shape(shapeOf(_dataset.id(), _path, _file->path()))
    , _format(formatOf(_dataset.id(), _file->path()))
{
    _shape.checkFrame(_path, _file->path());
    checkExternalFiles(_creation.id(), _path, _file->path());
}

void FrameSource::fail(std::size_t frame, const std::string& what) const
{
    hdf5::fail("frame " + std::to_string(frame + 1) + " of " + _path + " " + what, _file->path());
}

void FrameSource::fill(std::byte* pixels, std::size_t count) const
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
    // Doubles the part already filled.
    std::memcpy(pixels, value, size);
    for (std::size_t done = size; done < count * size; done *= 2)
        std::memcpy(pixels + done, pixels, std::min(done, count * size - done));
}

SourceOpener::Level::Level(SourceOpener& sources, const std::string& path)
    : _sources(sources)
{
    if (sources._levels >= MostLevels)
        throw MRuntimeException("HDF5: virtual data sets refer to each other without end: " + path);
    ++sources._levels;
}

}  // namespace morvend::imglib::hdf5
