// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A first contrast for an image: levels at which its background and its signal can both be seen.
#pragma once

#include <cstddef>

namespace morvend::imglib {

class MImage;

/// Chooses background and foreground for a masked image from order statistics of its good
/// pixels, so that hot pixels, sentinels and strong spots don't count; docs/display.md explains
/// how. Thread: any; the result depends on the pixels only. Cost: reads a sample, not the image.
class MContrast {
public:
    /// @param factor  the foreground is this many standard deviations of the background above the
    /// median
    /// @param bins  how finely the distribution is resolved: 8 pixels are examined for each bin
    MContrast(double factor, std::size_t bins);

    /// Both levels are finite and background < foreground; for integer images both are integers.
    /// A good pixel has none of the mask bits 31 set. Without good pixels: 0 and 1.
    /// @param mask  null, empty, or as many pixels as the image
    /// @throws MBadParameterException for a mask of another size
    void operator()(double& foreground, double& background, const MImage& image,
                    const MImage* mask) const;

private:
    double _factor;
    std::size_t _bins;
};

}  // namespace morvend::imglib
