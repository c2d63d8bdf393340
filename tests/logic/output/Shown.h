// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An image as a view shows it.
#pragma once

#include "imagelib/display/MColorTable.h"
#include "logic/output/ImageSnapshot.h"

namespace tarvik::tests {

using morvend::imglib::MImage;

/// Counts of 0 to 99 along the rows, one more in each row; saturated at 90, pixel 3 defective.
inline ImageSnapshot shown(int width, int height)
{
    ImageSnapshot result;
    result.image = MImage(width, height, 0);
    result.mask = MImage(width, height, static_cast<unsigned char>(0));
    auto* pixels = static_cast<int*>(result.image.data());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            *pixels++ = (x + y) % 100;
    if (result.mask.size() > 3)
        static_cast<unsigned char*>(result.mask.data())[3] = 2;
    result.image.optionalData().set_saturation_value(90);
    result.image.optionalData().set_wavelength(1.25F);
    result.contrast = ContrastData(50, 0, morvend::imglib::MColorTable::hdr(), false);
    return result;
}

}  // namespace tarvik::tests
