// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The walk that gathers a file's small values into a metadata tree.
#pragma once

#include "imagelib/image/MBasicNeXusTree.h"
#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include <functional>

namespace morvend::imglib::hdf5 {

/// Called for each data set of numbers with at least two extents: its path in the first file, and
/// its extents.
using ArrayVisitor =
    std::function<void(const std::string& path, const std::vector<hsize_t>& extents)>;

/// Gathers all groups and small data sets of a file, with their attributes, under the paths by
/// which they are reached. Soft links and external ones are followed, external links to image data
/// are not: below groups of the class NXdata, and those named "data" or "data_<number>". Dead links
/// and what can't be read are left out.
///
/// Bounds, so that no file can make it endless: 10,000 nodes, 24 levels, 64 external links, 4,096
/// elements of a data set, and 4 million of all longer one-dimensional ones together.
nexus::MBasicNeXusTree readMetadata(OpenFiles& files, const Hdf5FilePtr& file,
                                    const ArrayVisitor& visitArray = {});

}  // namespace morvend::imglib::hdf5
