// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pass over an image that fills its statistics.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/statistics/ImageStatistics.h"

#include <cstddef>
#include <functional>

class GoodPixels;
template <class T>
struct PixelTotals;

/// Computes the numbers of a whole image under its mask.
///
/// | mask pixel type | good if | else defective if |
/// |---|---|---|
/// | unsigned integer | (m & 31) == 0 | (m & 30) != 0 |
/// | signed integer | its magnitude is | its magnitude is |
/// | bool | false | never |
/// | float, double | equal to 0 | never |
class ComputeStatistics {
public:
    using MImage = morvend::imglib::MImage;

    explicit ComputeStatistics(ImageStatistics* target)
        : _target(target)
    {}

    /// Called after each strip of pixels, while they are still in the processor's cache.
    /// @param pixel  where the next strip begins
    using Progress = std::function<void(std::size_t pixel)>;

    /// Overwrites all fields of the target. The mask has the image's size. Prints timing lines.
    /// @param progress  other work on the same pixels, which finds them in the cache here
    /// @throws MNotImplementedException for an image or a mask without a pixel type
    void compute(const MImage& image, const MImage& mask, const Progress& progress = {}) const;

    /// The same without printed lines, for a mask that replaces the first one.
    void computeAgain(const MImage& image, const MImage& mask) const;

    /// Only the numbers, without histogram, contrast and printed lines.
    void computeNumbers(const MImage& image, const MImage& mask) const;

    /// The same for an image of pixels L and a mask of pixels R.
    template <class L, class R>
    void operator()(const MImage& image, const MImage& mask) const;

private:
    template <class L>
    void _numbers(const MImage& image, const GoodPixels& good) const;
    template <class L>
    void _numbersAndHistogram(const MImage& image, const MImage& mask, const Progress& progress,
                              bool printed) const;
    void _all(const MImage& image, const MImage& mask, const Progress& progress,
              bool printed) const;
    template <class L>
    void _set(const PixelTotals<L>& totals, const GoodPixels& good) const;

    ImageStatistics* _target;
};
