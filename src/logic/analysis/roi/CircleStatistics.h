// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A spot in a disc with a background ring around it.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <stop_token>
#include <utility>

/// The region "circle": intensity of a spot above its background, centroid, section at an angle.
/// Fills all but the labels that RoiComputer sets.
class ComputeCircleStatistics {
public:
    /// The selection must outlive the functor.
    /// @param stop  asked now and then; what is computed after a stop is of no use
    explicit ComputeCircleStatistics(const StatisticsData& selection, std::stop_token stop = {})
        : _selection(&selection)
        , _stop(std::move(stop))
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
    std::stop_token _stop;
};
