// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The powder plot: mean intensity over the radius around a centre.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

/// The region "centred circle": a ring around a real-valued centre. The geometry of the last
/// centre is kept, so that the next image of a series costs a fraction of the first.
/// Fills all but the labels that RoiComputer sets.
class ComputeCentredCircleStatistics {
public:
    /// The selection must outlive the functor.
    explicit ComputeCentredCircleStatistics(const StatisticsData& selection)
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
