// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The door of the HDF5 room: opens NeXus masters, their data files and other HDF5 image files.
#pragma once

#include "imagelib/io/formats/base/ImageFile.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace morvend::imglib {

/// Has the file an HDF5 signature, at its begin or behind a user's block? Reads it without the HDF5
/// library.
/// @throws MRuntimeException when the file is compressed as a whole
bool isHdf5(const ByteSource& source);

/// Opens an HDF5 file with the whole series that it belongs to. Frames are numbered from 1.
///
/// @returns null when the file has no HDF5 signature
/// @throws MException when the file is damaged, holds no images, no frame yet, or is compressed as
/// a whole. Once opened, a block that is missing or damaged fails its own frames alone.
std::unique_ptr<ImageFile> openHdf5(std::shared_ptr<const ByteSource> source);

/// Opens one data set of a file, or the images of one group, by its path; an empty path as above.
/// @throws MException also when there is nothing of that path, or it can't be shown as images
std::unique_ptr<ImageFile> openHdf5At(std::shared_ptr<const ByteSource> source,
                                      const std::string& dataset);

/// A data set that can be shown, or the numbered blocks of one group, which are shown as one.
struct Hdf5Dataset {
    std::string path;                ///< as openHdf5At() takes it
    bool isDefault = false;          ///< shown when no path is given
    std::size_t blocks = 1;          ///< data sets at this path
    std::size_t missing = 0;         ///< of them, whose links lead to no file or to nothing in it
    std::vector<std::size_t> shape;  ///< of the (first) data set; empty when it can't be opened
    std::string type;                ///< of its elements, such as "uint16"; empty as well
    std::string groupClass;          ///< NX_class of the group that it is in, if any
    std::string leadsTo;             ///< "FILE::/path" or "/path" behind a (first) link
    std::string failure;             ///< of the first link that is dead, naming the file
};

/// All data sets of a file that can be shown as images, in the order of their paths, also masks
/// and tables, and links that should lead to some. Looks at 10,000 groups and data sets and opens
/// 256 other files at most.
/// @throws MException when it is no HDF5 file or can't be read
std::vector<Hdf5Dataset> listHdf5(const std::string& path);

}  // namespace morvend::imglib
