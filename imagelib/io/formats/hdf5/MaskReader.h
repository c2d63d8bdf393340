// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixel mask of a NeXus file.
#pragma once

#include "imagelib/io/formats/hdf5/FrameSets.h"

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// Reads the mask at the first of `paths` that has one, of 32-bit unsigned pixels, and adds those
/// of `pixel_mask_2` and so on beside it (bitwise or). Of a mask for each frame the first counts.
///
/// A mask whose width and height are those of the image the other way round was stored column by
/// column, and is turned; one that fits neither way is left out. Bits 5 to 15 mark bad pixels too,
/// such as a user's mask, while our statistics test bits 0 to 4: they become bit 4 where bits 0 to
/// 4 are clear.
/// @returns the empty image when there is no mask that fits or it can't be read
MImage readMask(FrameSets& sets, const std::string& file, const std::vector<std::string>& paths,
                int width, int height);

}  // namespace morvend::imglib::hdf5
