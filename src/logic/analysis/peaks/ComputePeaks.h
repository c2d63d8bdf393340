// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The search for local maxima.
#pragma once

#include "logic/analysis/peaks/ImagePeaks.h"

#include <set>

/// Finds the strongest local maxima of an image.
///
/// A good pixel is a peak when none of its four neighbours before it in storage order is at or
/// above it and none of the four after it is above it. Neighbours are taken by raw index: the left
/// one of a row's first pixel is the last pixel of the row before, and excluded neighbours count
/// like others. The first thousand peaks enter the working set; after that one enters only when it
/// is above the smallest, which it replaces. NaN is never a peak: it has no order.
///
/// The image is first searched for the few pixels that can end up among the thousand: those
/// at or above a bound that a sample suggests. Peaks below the bound are pushed out by the first
/// thousand above it, so they change nothing once there are that many; otherwise the bound is
/// lowered. The result is exact for any sample.
class ComputePeaks {
public:
    struct Less {
        bool operator()(const ImagePeaks::Pixel& a, const ImagePeaks::Pixel& b) const
        {
            return a.value < b.value;
        }
    };
    using PeakSet = std::multiset<ImagePeaks::Pixel, Less>;

    /// Runs the functor for the pixel types of image and mask.
    PeakSet compute(const morvend::imglib::MImage& image,
                    const morvend::imglib::MImage& mask) const;

    template <class L, class R>
    PeakSet operator()(const morvend::imglib::MImage& image,
                       const morvend::imglib::MImage& mask) const;
};
