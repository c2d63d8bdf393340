// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which of several detectors took the images of a file.
#pragma once

#include "imagelib/io/formats/hdf5/library/OpenFiles.h"

#include <string>

namespace morvend::imglib::hdf5 {

/// The group of the detector whose data set an image is, by path, by link, or by the attribute
/// `target` that NeXus gives to a data set with several names. Empty if unknown.
/// @param entry  path of the entry whose detectors are searched
/// @param image  path of the data set, or of the first of its blocks
std::string detectorOf(OpenFiles& files, const Hdf5FilePtr& file, const std::string& entry,
                       const std::string& image);

}  // namespace morvend::imglib::hdf5
