// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finds the images of an HDF5 file: NeXus of all generations, and other layouts in use.
#pragma once

#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// What was found in a file.
struct ImageLinks {
    std::string entry;                // path of the entry group, "" for the root
    std::vector<std::string> blocks;  // paths of the blocks of frames, in order
    std::string detector = {};        // path of the detector that took them, "" if unknown
};

/// Looks for the images that a file shows by itself; docs/formats/hdf5.md gives the order.
///
/// Whatever is narrow in one direction is a table, and is chosen only if there are no images. Masks
/// and what else is made for images don't count. A block whose link is dead may be planned or lost:
/// where the file says that it holds the images it is the answer, elsewhere if there is no better
/// one.
/// @throws MRuntimeException when there are no images
ImageLinks findImages(OpenFiles& files, const Hdf5FilePtr& file);

/// The images at a path: a data set of any kind, or what a group holds.
/// @throws MRuntimeException when the file has no such path, or the group holds no images
ImageLinks findImagesAt(OpenFiles& files, const Hdf5FilePtr& file, const std::string& path);

}  // namespace morvend::imglib::hdf5
