// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which of several detectors took the images of a file.
#pragma once

#include "imagelib/io/formats/hdf5/nexus/DataFinder.h"

namespace morvend::imglib::hdf5 {

/// The group of the detector whose data set the images are, by path, by link, or by the attribute
/// `target` that NeXus gives to a data set with several names. Empty when none is known to be.
std::string detectorOf(Hdf5Files& files, const Hdf5FilePtr& file, const ImageLinks& images);

}  // namespace morvend::imglib::hdf5
