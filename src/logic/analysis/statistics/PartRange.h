// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Contrasts that span a part of the pixels of a part of an image.
#pragma once

#include "imagelib/display/MRect.h"
#include "imagelib/image/MImage.h"
#include "logic/analysis/statistics/ContrastRange.h"

/// The levels that span a range of the good pixels of a part; what lies beyond the image is left
/// out. Exact for pixels of any size, and so finer than the histogram of a whole floating image.
/// Empty without any pixel. Thread: any. Cost: copies the part and sorts its outer values.
/// @param mask  of the image's size
std::optional<ContrastLevels> contrastLevelsOfPart(const morvend::imglib::MImage& image,
                                                   const morvend::imglib::MImage& mask,
                                                   const morvend::imglib::MRect& part,
                                                   const ContrastRange& range);
