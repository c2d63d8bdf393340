// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The strongest local maxima of an image.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstddef>
#include <vector>

/// At most 1000 local maxima, strongest first; among equal ones the later-found first. A value.
class ImagePeaks {
public:
    /// A local maximum, in image pixels.
    struct Pixel {
        int x = 0;
        int y = 0;
        double value = 0;
    };
    static constexpr std::size_t MostPeaks = 1000;

    /// Replaces the list with the peaks of an image under its mask.
    /// @throws MNotImplementedException for a pixel type other than the twelve,
    /// MBadParameterException for a mask of another size
    /// Cost: near one read of the image; see ComputePeaks.
    void setImage(const morvend::imglib::MImage& image, const morvend::imglib::MImage& mask);

    /// The pixel of rank i, or (0, 0, 0.0) if there isn't one.
    Pixel operator[](int i) const;
    int numberOfPeaks() const { return static_cast<int>(_pixels.size()); }
    const std::vector<Pixel>& pixels() const { return _pixels; }

private:
    std::vector<Pixel> _pixels;
};
