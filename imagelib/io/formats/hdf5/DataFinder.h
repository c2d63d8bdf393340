// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where the images of an HDF5 file lie: NeXus in its generations, and other layouts in use.
#pragma once

#include "imagelib/io/formats/hdf5/Hdf5Files.h"

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// What was found in a file.
struct ImageLinks {
    std::string entry;                // path of the entry group, "" for the root
    std::vector<std::string> blocks;  // paths of the blocks of frames, in order
};

/// Looks for images in this order, entries before the root:
/// the group that `default` names, then "data", then groups of the class NXdata, then
/// "measurement"; in such a group the blocks "data_<number>" by number, the data set that `signal`
/// names, "data", a data set marked by an attribute `signal`, the first data set of numbers; then
/// the entry's own "data" or "data_<number>", and "data" below a detector. Then "/exchange/data".
/// Last of all the largest data set of numbers with three extents, else with two.
///
/// A block whose link is dead is taken if nothing better is there: it may be planned or lost.
/// @throws MRuntimeException when there are no images
ImageLinks findImages(Hdf5Files& files, const Hdf5FilePtr& file);

}  // namespace morvend::imglib::hdf5
