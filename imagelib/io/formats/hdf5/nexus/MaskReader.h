// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixel mask of a NeXus file.
#pragma once

#include "imagelib/io/formats/hdf5/frames/OpenFrameSets.h"

#include <string>
#include <vector>

namespace morvend::imglib::hdf5 {

/// The mask of a frame, and a remark about it.
struct Mask {
    MImage image;          ///< of 32-bit unsigned pixels; empty if none fits
    bool ofFrame = false;  ///< another frame may have another mask
    std::string remark;    ///< what was left out, and why; empty if nothing was
};

/// The frame that a mask belongs to.
struct MaskedFrame {
    int width = 0;
    int height = 0;
    std::size_t position = 0;  ///< from 0
    std::size_t frames = 0;    ///< of the series
};

/// Reads the mask at the first of `paths` that has one, and adds those of `pixel_mask_2` and so on
/// beside it (bitwise or). A file may hold a mask for each frame.
///
/// A mask whose width and height are those of the image the other way round was stored column by
/// column, and is turned; one that fits neither way, or can't be read, is left out with a remark:
/// an image without its mask is worth more than none. Bits 5 to 15 mark bad pixels too, such as a
/// user's mask, while our statistics test bits 0 to 4: they become bit 4 where bits 0 to 4 are
/// clear.
Mask readMask(OpenFrameSets& sets, const std::string& file, const std::vector<std::string>& paths,
              const MaskedFrame& frame);

}  // namespace morvend::imglib::hdf5
