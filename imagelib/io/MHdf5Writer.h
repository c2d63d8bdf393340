// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writing of HDF5 series: a NeXus master file with data files.
#pragma once

#include "imagelib/image/MImage.h"
#include "imagelib/io/MCompression.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace morvend::imglib {

/// Writes images one after the other; their numbers begin with 1. The files appear under their
/// names with the first flush(), which also makes the frames so far readable, at the latest in
/// the destructor; if nothing was written, no file remains. Errors: MExceptions naming the file.
/// Thread: one at a time.
class MHdf5Writer {
public:
    /// What happens to files of the same names: a flush() fails rather than replace what is to be
    /// kept.
    enum class Existing { Replace, Keep };

    /// @param path    the master file, usually "<stem>_master.h5"; data files go beside it as
    ///                "<stem>_data_000001.h5" and so on
    /// @param images  expected number of images, 0 if unknown; files grow as images
    ///                come, whatever it is
    /// @param tree    metadata of the series; the header of the first image takes precedence
    /// @throws MNoFileAccessException when the file can't be created
    MHdf5Writer(const std::string& path, int images, const nexus::MBasicNeXusTree& tree,
                MCompression::FILTER filter, Existing existing = Existing::Replace);
    ~MHdf5Writer();
    MHdf5Writer(const MHdf5Writer&) = delete;
    MHdf5Writer& operator=(const MHdf5Writer&) = delete;

    /// Appends an image with its header.
    /// @throws MBadParameterException for an empty image or another size or type than before
    void write(const MImage& image);
    /// Appends pixels; size from the images before or from the tree's x_pixels_in_detector and
    /// y_pixels_in_detector. @throws MBadParameterException when they don't fit
    void write(const image::MBasicImage<>& pixels);
    /// As write(image), but without compressing it.
    /// @param packed  its pixels as BITSHUFFLE_LZ4 packs them, which must be the writer's filter;
    ///                empty: they are stored plain
    void writeAsIs(const MImage& image, std::span<const std::byte> packed);
    /// Writes all that is pending.
    void flush();

private:
    class Private;
    const std::unique_ptr<Private> _d;
};

}  // namespace morvend::imglib
