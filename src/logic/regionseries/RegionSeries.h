// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A region of interest in all images of a series, computed in the background.
#pragma once

#include "imagelib/image/NumberRange.h"
#include "logic/records/StatisticsData.h"
#include "logic/regionseries/SeriesPoint.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Goes through a series on a few lanes, each of which has the series open for itself and computes
/// one image at a time as a background job of the pool: loads of views go first. An image that
/// can't be read, whose reader crashes or does not answer, fails alone.
///
/// Memory: one image a lane, and the points until they are taken. Images that come after the start
/// are left out. Thread: any, one at a time.
class RegionSeries {
public:
    struct Order {
        /// Opens the series, see MImageSeries::open().
        std::string path;
        StatisticsData region;
        /// Lanes at most; 0: as many as keep the cores busy.
        int lanes = 0;
    };
    /// What has come since the last take(), and the state of the whole.
    struct News {
        /// In no order.
        std::vector<SeriesPoint> points;
        /// Of the series as it was at the start; -1 until it is open.
        int first = -1;
        int last = -1;
        /// Numbers without image; null without any.
        morvend::imglib::NumberRanges gaps;
        /// Images of the series, and those that are done.
        int images = 0;
        int done = 0;
        /// All images up to this number are done.
        int settled = -1;
        bool finished = false;
        /// Why the series could not be opened or was given up; empty where it was finished.
        std::string error;
        /// Why images failed, a line for each kind of failure.
        std::vector<std::string> failures;
    };
    /// After so many images in a row whose file did not answer in time the series is given up.
    static constexpr int MostTimeouts = 3;

    /// Begins at once.
    /// @param changed  called on a worker when there is something to take, once until that was
    /// done; no function of this object may be called from there
    RegionSeries(Order order, std::function<void()> changed);
    /// Ends the work without waiting for it; `changed` is not called any more.
    ~RegionSeries();
    RegionSeries(const RegionSeries&) = delete;
    RegionSeries& operator=(const RegionSeries&) = delete;

    News take();

private:
    struct State;
    struct Lane;
    const std::shared_ptr<State> _state;  // with the jobs
};
