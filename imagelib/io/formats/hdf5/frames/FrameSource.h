// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A data set that holds frames, as its readers see it.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/hdf5/frames/ChunkCache.h"
#include "imagelib/io/formats/hdf5/frames/FrameShape.h"
#include "imagelib/io/formats/hdf5/library/OpenFiles.h"
#include "imagelib/io/formats/hdf5/library/PixelFormat.h"

#include <memory>
#include <optional>
#include <string>

namespace morvend::imglib::hdf5 {

class SourceOpener;

/// An opened data set of frames: what its elements and extents mean. How a frame is read depends on
/// its layout, see OpenFrameSets. Thread: callers take turns.
class FrameSource {
public:
    /// @throws MRuntimeException or MNotImplementedException when the data set can't be images:
    /// elements that aren't numbers, another rank than 2 to 4, frames beyond the limits of an image
    explicit FrameSource(OpenedObject object);
    FrameSource(const FrameSource&) = delete;
    FrameSource& operator=(const FrameSource&) = delete;
    virtual ~FrameSource() = default;

    const Hdf5FilePtr& file() const { return _file; }
    const std::string& path() const { return _path; }
    hid_t id() const { return _dataset.id(); }
    /// The properties that the data set was created with.
    hid_t creation() const { return _creation.id(); }
    const FrameShape& shape() const { return _shape; }
    const PixelFormat& format() const { return _format; }
    std::size_t frames() const { return static_cast<std::size_t>(_shape.frames); }

    /// A frame without header. Pixels that were never written show the fill value.
    /// @param sources  opens the sources of virtual data sets and keeps decoded chunks
    /// @throws MException naming frame, data set and file
    virtual MImage read(std::size_t frame, SourceOpener& sources) const = 0;

    /// The file that holds a frame's pixels: of a virtual data set the first source.
    virtual std::string holder(std::size_t frame) const = 0;
    /// The first frame whose pixels are in another file, given by its base name.
    virtual std::optional<std::size_t> firstFrameIn(const std::string& file) const = 0;

    /// Throws MRuntimeException "HDF5: frame 3 of /entry/data/data <what> (<library>): <path>".
    [[noreturn]] void fail(std::size_t frame, const std::string& what) const;
    /// Sets a number of pixels to the value of those that were never written.
    void fill(std::byte* pixels, std::size_t count) const;

private:
    Hdf5FilePtr _file;
    std::string _path;
    Object _dataset;
    Properties _creation;
    FrameShape _shape;
    PixelFormat _format;
};

using FrameSourcePtr = std::shared_ptr<const FrameSource>;

/// Gives the data sets that a frame is read from, and what they share. Thread: callers take turns.
class SourceOpener {
public:
    /// Virtual data sets may be nested this deep.
    static constexpr int MostLevels = 4;

    virtual ~SourceOpener() = default;

    /// @throws MException naming the file if the file or data set set
    virtual FrameSourcePtr at(const ObjectPath& path) = 0;
    virtual OpenFiles& files() = 0;
    virtual ChunkCache& chunks() = 0;

    /// Counts the levels of virtual data sets passed on the way to a pixel.
    class Level {
    public:
        /// @throws MRuntimeException when virtual data sets refer to each other without end
        Level(SourceOpener& sources, const std::string& path);
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --_sources._levels; }

    private:
        SourceOpener& _sources;
    };

private:
    int _levels = 0;
};

}  // namespace morvend::imglib::hdf5
