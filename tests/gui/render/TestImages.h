// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images from memory for tests of views.
#pragma once

#include "imagelib/image/MImage.h"

#include <algorithm>

namespace images {

using morvend::imglib::MImage;

/// All pixels of one value; none masked.
inline MImage uniform(int width, int height, int value)
{
    MImage image(width, height, 0);
    std::fill_n(static_cast<int*>(image.data()), std::size_t(width) * std::size_t(height), value);
    image.optionalData().set_pixel_mask(MImage(width, height, 0U));
    return image;
}

/// The same with all that rings of resolution need.
inline MImage withGeometry(int width, int height, int value, float beamX, float beamY)
{
    MImage image = uniform(width, height, value);
    auto& header = image.optionalData();
    header.set_beam_center_x(beamX);
    header.set_beam_center_y(beamY);
    header.set_x_pixel_size(172e-6F);
    header.set_y_pixel_size(172e-6F);
    header.set_detector_distance(0.2F);
    header.set_wavelength(1.0F);
    return image;
}

}  // namespace images
