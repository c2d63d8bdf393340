// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The numbers of one region in many images, without its curves.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <memory>
#include <mutex>

class RegionStencil;

/// What RoiComputer finds, but for curves, reflections, length, deviation, centroid and smallest
/// value. Which part of which pixel belongs to a line, a circle or a ring is worked out once for
/// all images of a size; their sums differ from those of RoiComputer by rounding alone, and depend
/// neither on the processor nor on the images before. Thread: any, several at a time.
class RegionNumbers {
public:
    explicit RegionNumbers(const StatisticsData& region);
    ~RegionNumbers();

    /// @throws as RoiComputer::compute()
    RoiStatistics compute(const morvend::imglib::MImage& image,
                          const morvend::imglib::MImage& mask);

private:
    std::shared_ptr<const RegionStencil> _stencilFor(const morvend::imglib::MImage& image);

    const StatisticsData _region;
    std::mutex _mutex;  // over the next, also while it is worked out: all others need it
    std::shared_ptr<const RegionStencil> _stencil;  // of the last image's size; null before
};
