// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The exact cumulative histogram of an image.
#pragma once

#include "imagelib/image/MImage.h"

#include <memory>

struct IntergrateHistogramPrivate;  // the spelling is part of the interface
template <class T>
class ValueCounts;

/// Gives for any value the number of good pixels at or below it. A fixed number of bins around the
/// mean holds the bulk of the pixels, the sorted pixel values themselves the tails, so that a hot
/// pixel far from the mean costs one array element, not a bin.
/// Thread: filled by one thread, then read by any.
class IntegratedHistogram {
public:
    IntegratedHistogram();
    virtual ~IntegratedHistogram();
    IntegratedHistogram(const IntegratedHistogram&) = delete;
    IntegratedHistogram& operator=(const IntegratedHistogram&) = delete;

    /// Counts an image under a mask of the same size; `mean` is the mean of its good pixels.
    /// @throws MNotImplementedException for a pixel type other than the twelve,
    /// MBadParameterException for a mask of another size, MRuntimeException when memory is short
    void compute(const morvend::imglib::MImage& image, const morvend::imglib::MImage& mask,
                 double mean);
    /// The same from values that were counted already.
    template <class T>
    void compute(const ValueCounts<T>& counts, double mean);

    /// Number of counted pixels of value at most x. Cost: constant in the binned range, logarithmic
    /// in the tails.
    unsigned int value(double x) const;

    /// Counted pixels in ascending order have the ranks from 0 on.
    struct Ranks {
        unsigned int begin = 0;
        unsigned int end = 0;
    };
    /// The value of the pixel of a rank below that of the largest one; of floating pixels in the
    /// binned range the middle of the bin. Cost: logarithmic.
    double valueAt(unsigned int rank) const;
    /// The ranks of the values that are no marks of gaps, see imagelib/image/GapValues.h; those of
    /// all values if nothing else is left.
    Ranks intensities() const;
    bool floatingPixels() const;
    /// How far the values of valueAt() may be off; 0 for integer pixels.
    double coarseness() const;

private:
    const std::unique_ptr<IntergrateHistogramPrivate> _d;
};
