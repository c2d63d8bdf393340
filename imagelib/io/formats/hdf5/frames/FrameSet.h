// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A data set that holds frames, opened.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/hdf5/frames/FrameShape.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Files.h"
#include "imagelib/io/formats/hdf5/library/PixelFormat.h"

#include <memory>
#include <optional>

namespace morvend::imglib::hdf5 {

class ChunkReader;
class FrameSets;
class VirtualLayout;

/// Frames of one data set. Chunks whose filters are known are read raw and decoded straight into
/// the image, outside the library and its lock; everything else goes through the library.
/// Thread: callers take turns.
class FrameSet {
public:
    /// @throws MRuntimeException or MNotImplementedException when the data set can't be images:
    /// elements that are no numbers, another rank than 2 to 4, frames beyond the limits of an image
    explicit FrameSet(Found found);
    ~FrameSet();

    const Hdf5FilePtr& file() const { return _file; }
    const std::string& path() const { return _path; }
    hid_t id() const { return _dataset.id(); }
    hid_t creation() const { return _creation.id(); }
    const FrameShape& shape() const { return _shape; }
    const PixelFormat& format() const { return _format; }
    std::size_t frames() const { return static_cast<std::size_t>(_shape.frames); }

    /// A frame without header. Places that were never written show the fill value.
    /// @param sets  opens the sources of virtual data sets and keeps decoded chunks
    /// @throws MException naming frame, data set and file
    MImage read(std::size_t frame, FrameSets& sets) const;

    /// The file that holds a frame's pixels: of a virtual data set the first source.
    std::string holder(std::size_t frame) const;
    /// The first frame whose pixels lie in a file, found by its base name.
    std::optional<std::size_t> firstFrameIn(const std::string& file) const;

    /// Throws MRuntimeException "HDF5: frame 3 of /entry/data/data <what> (<library>): <path>".
    [[noreturn]] void fail(std::size_t frame, const std::string& what) const;
    /// Sets a number of pixels to the value of places that were never written.
    void fill(std::byte* pixels, std::size_t count) const;

private:
    void _checkSize() const;
    void _checkChunks() const;
    void _readThroughLibrary(std::size_t frame, std::byte* pixels) const;
    std::string _missingFilters() const;

    Hdf5FilePtr _file;
    std::string _path;
    Object _dataset;
    Properties _creation;
    FrameShape _shape;
    PixelFormat _format;
    std::unique_ptr<ChunkReader> _chunks;     // when chunks can be decoded here
    std::unique_ptr<VirtualLayout> _virtual;  // of a virtual data set
};

using FrameSetPtr = std::shared_ptr<const FrameSet>;

}  // namespace morvend::imglib::hdf5
