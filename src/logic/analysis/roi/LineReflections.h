// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The reflections that a line crosses, and their distances.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/LineProfile.h"
#include "logic/analysis/roi/RoiStatistics.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace roi {

/// A rectangle of pixels, right and bottom end excluded.
struct PixelBox {
    int left;
    int top;
    int right;
    int bottom;
    int width() const { return std::max(right - left, 0); }
    int height() const { return std::max(bottom - top, 0); }
};

/// A pixel of the line in the search for reflections.
struct ListPixel {
    int x;
    int y;
    double value;
    int label;
};

/// Intensity above which a pixel is part of a reflection: mean plus three deviations of the line's
/// background, found by sigma clipping that starts from the given mean and sigma.
double reflectionThreshold(const std::vector<ListPixel>& list, double mean, double sigma);

/// The surroundings of a line in which reflections are separated: its bounding box with 10 pixels
/// more on all sides, clipped to the image.
PixelBox reflectionBox(int beginX, int beginY, int endX, int endY, const morvend::imglib::MImage&);

/// Finds the reflections among the pixels of the list and fills the reflection fields. The time
/// depends on the length of the list and the size of the reflections.
/// @param above  true if a pixel of the box, in image coordinates, is above the threshold and not
///               marked by the mask
void findReflections(RoiStatistics& result, std::vector<ListPixel> list, const PixelBox& box,
                     const std::function<bool(int x, int y)>& above,
                     const morvend::imglib::MImage& image);

}  // namespace roi

/// Spacing of the lattice planes for the angle between the rays scattered into two pixels, in
/// Angstrom; -1 when the header lacks one of beam centre, distance, pixel sizes and wavelength, or
/// when both are the same pixel.
double latticeDistance(const morvend::imglib::MImage& image, double x1, double y1, double x2,
                       double y2);
