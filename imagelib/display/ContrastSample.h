// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The intensities from which a first contrast is chosen.
#pragma once

#include <cstddef>
#include <vector>

namespace morvend::imglib {

class MImage;

/// Intensities in ascending order.
using ContrastSample = std::vector<double>;

/// Good intensities of about `wanted` pixels from all parts of an image: one short run at a random
/// place in each of many equal stretches, so that no pattern of modules or gaps coincides with the
/// runs. Where these hold hardly a good pixel, a sample of all pixels, thinned out evenly. Not
/// counted are values that aren't finite, and the highest of an unsigned type.
///
/// The part that depends on the mask is kept for the next image that shares it. Thread: any.
/// @param mask  null, or as many pixels as the image
ContrastSample contrastSample(const MImage& image, const MImage* mask, std::size_t wanted);

}  // namespace morvend::imglib
