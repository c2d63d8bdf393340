// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The computations of the four kinds of regions.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <stop_token>
#include <utility>

/// Computes one kind of region. Fills all fields except the labels, which RoiComputer sets.
template <StatisticsData::RoiType Kind>
class RegionFunctor {
public:
    /// The selection must outlive the functor.
    /// @param stop  polled; after a stop the result is unusable
    explicit RegionFunctor(const StatisticsData& selection, std::stop_token stop = {})
        : _selection(&selection)
        , _stop(std::move(stop))
    {}

    /// Each kind has a source file of its own.
    /// @throws MNotImplementedException for a type other than the twelve
    RoiStatistics compute(const morvend::imglib::MImage& image,
                          const morvend::imglib::MImage& mask) const;

    /// The same for known pixel types; only the line and the circle have it.
    template <class L, class R>
    RoiStatistics operator()(const morvend::imglib::MImage& image,
                             const morvend::imglib::MImage& mask) const;

private:
    const StatisticsData* _selection;
    std::stop_token _stop;
};

/// Profile, trapezoid sums and reflections along a line, which is short enough not to be stopped.
using ComputeLineStatistics = RegionFunctor<StatisticsData::Line>;
/// Sums, extremes and projections of a box. Excluded pixels count as zeros; only the mean leaves
/// them out.
using ComputeBoxStatistics = RegionFunctor<StatisticsData::Box>;
/// A spot in a disc: its intensity above the ring around it, centroid, section at an angle.
using ComputeCircleStatistics = RegionFunctor<StatisticsData::Circle>;
/// The powder plot: mean intensity over the radius in a ring around a real-valued centre.
using ComputeCentredCircleStatistics = RegionFunctor<StatisticsData::CentredCircle>;

template <>
RoiStatistics ComputeLineStatistics::compute(const morvend::imglib::MImage& image,
                                             const morvend::imglib::MImage& mask) const;
template <>
RoiStatistics ComputeBoxStatistics::compute(const morvend::imglib::MImage& image,
                                            const morvend::imglib::MImage& mask) const;
template <>
RoiStatistics ComputeCircleStatistics::compute(const morvend::imglib::MImage& image,
                                               const morvend::imglib::MImage& mask) const;
template <>
RoiStatistics ComputeCentredCircleStatistics::compute(const morvend::imglib::MImage& image,
                                                      const morvend::imglib::MImage& mask) const;
