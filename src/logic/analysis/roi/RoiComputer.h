// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Turns an image, its mask and a selection into the numbers and curves of the region.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <stop_token>
#include <utility>

/// Computes a region of interest. Image and mask are not owned and must outlive compute().
/// Thread: any; compute() is const and reentrant.
class RoiComputer {
public:
    /// Largest coordinate and radius of a region, far beyond any detector: the curves of a larger
    /// one would not fit into memory.
    static constexpr int MostPixels = 1'000'000;

    void setStatisticsData(const StatisticsData& selection) { _selection = selection; }
    void setImage(const morvend::imglib::MImage& image) { _image = &image; }
    void setMask(const morvend::imglib::MImage& mask) { _mask = &mask; }

    /// Lets compute() end early once a stop is requested; the result is then unusable.
    void setStopToken(std::stop_token stop) { _stop = std::move(stop); }

    /// Checks what compute() refuses.
    /// @throws MBadParameterException
    void check() const;

    /// A default record if image, mask or a defined selection is missing.
    /// @throws MNotImplementedException for a pixel type other than the twelve,
    /// MBadParameterException for a region beyond MostPixels or a mask of another size
    RoiStatistics compute() const;

    /// The same for a view, where a region must not make an image fail: one that compute()
    /// refuses gives a default record and a warning on standard error.
    /// @throws MNotImplementedException
    RoiStatistics computeOrWarn() const;

private:
    StatisticsData _selection;
    std::stop_token _stop;
    const morvend::imglib::MImage* _image = nullptr;
    const morvend::imglib::MImage* _mask = nullptr;
};
