// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A series of images as a NeXus master file with data files beside it.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/formats/hdf5/write/FrameLayout.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace morvend::imglib {

namespace hdf5 {
class DataFile;
class PendingFile;
}  // namespace hdf5

/// Writes frame by frame. The master file holds the metadata (NXmx) and external links
/// /entry/data/data_000001 and so on to /entry/data/data of the data files, which have the master's
/// name without "_master" and with "_data_000001" and the same extension. Numbers begin with 1.
///
/// The header of the first image, merged into the tree given to the constructor, describes the
/// series; the rotation angle is kept for each frame. Nothing appears under the final names before
/// the first frame is in its data file; without any frame nothing remains.
/// Errors: MExceptions naming the file. Thread: one at a time.
class NexusWriter {
public:
    struct Options {
        hdf5::Compression compression = hdf5::Compression::BitshuffleLz4;
        std::size_t framesPerFile = 1000;
        bool replaces = true;  ///< files of the same names
    };

    /// @throws MNoFileAccessException when the file can't be created
    NexusWriter(const std::string& path, const nexus::MBasicNeXusTree& tree,
                const Options& options);
    /// Publishes what was written. Errors are not reported here: call flush() first to learn of
    /// them.
    ~NexusWriter();
    NexusWriter(const NexusWriter&) = delete;
    NexusWriter& operator=(const NexusWriter&) = delete;

    /// Appends a frame. @throws MBadParameterException for an empty image or one of another size or
    /// type than the frames before
    void write(const MImage& image);
    /// Appends pixels without geometry: that of the frames before, else of the tree's
    /// detectorSpecific/x_pixels_in_detector and y_pixels_in_detector.
    /// @throws MBadParameterException when they don't fit or no geometry is known
    void write(const image::MBasicImage<>& pixels);
    /// As write(image), but without compressing it.
    /// @param packed  its pixels as the writer's compression packs them; empty: they are stored
    /// plain
    void writeAsIs(const MImage& image, std::span<const std::byte> packed);
    /// Makes all frames so far readable.
    void flush();
    std::size_t frames() const { return _frames; }

private:
    void _append(const hdf5::FrameLayout& layout, const void* pixels,
                 const MBasicImageOptionalData<>& header);
    hdf5::DataFile& _dataFor(const hdf5::FrameLayout& layout,
                             const MBasicImageOptionalData<>& header);
    hdf5::FrameLayout _layoutOf(const MImage& image) const;
    void _count(const MBasicImageOptionalData<>& header);
    void _begin(const hdf5::FrameLayout& layout, const MBasicImageOptionalData<>& header);
    void _nextDataFile();
    void _writeMask(const MImage& mask);
    void _writeAngles();

    std::unique_ptr<hdf5::PendingFile> _master;
    nexus::MBasicNeXusTree _tree;
    Options _options;
    hdf5::FrameLayout _layout;
    std::unique_ptr<hdf5::DataFile> _data;
    std::size_t _dataFiles = 0;
    std::size_t _frames = 0;
    std::vector<double> _angles;  // start of each frame, degrees; NaN where it is not known
    std::size_t _anglesWritten = 0;
};

}  // namespace morvend::imglib
