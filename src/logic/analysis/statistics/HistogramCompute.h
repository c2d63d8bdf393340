// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The bins of the cumulative histogram; integers of 8 to 32 bits come counted from ValueCounts.
#pragma once

#include "imagelib/image/MImage.h"

#include <memory>

class GoodPixels;
template <class T>
class ValueCounts;

/// The contents of an IntegratedHistogram.
struct IntergrateHistogramPrivate {
    /// Ends of the binned range, lower inclusive, upper exclusive.
    double lower = 0;
    double upper = 0;
    /// Cumulative counts, the tail below included.
    std::unique_ptr<unsigned int[]> bins;
    unsigned long binCount = 0;
    /// Bins per unit of pixel value.
    double binsPerUnit = 0;
    /// Every counted pixel under `lower` and at or over `upper`, ascending, in the pixel type of
    /// the image.
    morvend::image::MBasicImage<> below{std::allocator<char>(), morvend::datatypes::INT, 32, 0};
    morvend::image::MBasicImage<> above{std::allocator<char>(), morvend::datatypes::INT, 32, 0};
};

/// Fills bins and tails from an image under its mask. The number of bins is 1000 for each byte of
/// an integer pixel, one unit wide, and 100000 for floating pixels, 1e-6 (float) or 1e-9 (double)
/// wide; they are around the mean, within the values that the type can hold. NaN is not counted.
///
/// Memory: two scratch arrays of the image's size from the pool of pixel memory, so that the loop
/// never reallocates; only the part that the tails need is touched. A tail that fills most of its
/// scratch keeps it. Integers of 16 and 32 bits and bytes are counted by ValueCounts, which takes
/// one more.
class HistogramCompute {
public:
    HistogramCompute(IntergrateHistogramPrivate* target, double mean)
        : _target(target)
        , _mean(mean)
    {}

    void compute(const morvend::imglib::MImage& image, const morvend::imglib::MImage& mask) const;

    /// From values that were counted already.
    template <class T>
    void fill(const ValueCounts<T>& counts) const;

    template <class L, class R>
    void operator()(const morvend::imglib::MImage& image,
                    const morvend::imglib::MImage& mask) const;

private:
    template <class L>
    void _count(const morvend::imglib::MImage& image, const GoodPixels& good) const;

    IntergrateHistogramPrivate* _target;
    double _mean;
};
