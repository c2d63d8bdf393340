// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sums, extremes and projections of a box.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

/// The region "box". Excluded pixels enter it as zeros; only the mean leaves them out.
/// Fills all but the labels that RoiComputer sets.
class ComputeBoxStatistics {
public:
    /// The selection must outlive the functor.
    explicit ComputeBoxStatistics(const StatisticsData& selection)
        : _selection(&selection)
    {}

    /// Runs the functor for the pixel types of image and mask.
    /// @throws MNotImplementedException for a type that is none of the twelve
    RoiStatistics compute(const morvend::imglib::MImage& image,
                          const morvend::imglib::MImage& mask) const;

    template <class L, class R>
    RoiStatistics operator()(const morvend::imglib::MImage& image,
                             const morvend::imglib::MImage& mask) const;

private:
    const StatisticsData* _selection;
};
