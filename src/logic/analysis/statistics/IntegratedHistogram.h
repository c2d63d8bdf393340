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

private:
    const std::unique_ptr<IntergrateHistogramPrivate> _d;
};
