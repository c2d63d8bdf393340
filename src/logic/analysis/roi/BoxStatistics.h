// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Sums, extremes and projections of a box.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <stop_token>
#include <utility>

/// The region "box". Excluded pixels enter it as zeros; only the mean leaves them out.
/// Fills all but the labels that RoiComputer sets.
class ComputeBoxStatistics {
public:
    /// The selection must outlive the functor.
    /// @param stop  asked now and then; what is computed after a stop is of no use
    explicit ComputeBoxStatistics(const StatisticsData& selection, std::stop_token stop = {})
        : _selection(&selection)
        , _stop(std::move(stop))
    {}

    /// @throws MNotImplementedException for a type that is none of the twelve
    RoiStatistics compute(const morvend::imglib::MImage& image,
                          const morvend::imglib::MImage& mask) const;

private:
    const StatisticsData* _selection;
    std::stop_token _stop;
};
