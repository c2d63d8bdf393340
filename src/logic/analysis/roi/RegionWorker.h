// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Computes regions of interest off the caller's thread, always the newest only.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <functional>
#include <memory>

/// Computes the regions of one view on a thread that all views of the process share; the work on
/// one region is split over the cores. Views take turns.
///
/// A new request takes the place of the one before: that is dropped if it has not begun, and cut
/// short if it has; its result is never returned.
/// Thread: all functions from one thread, the view's.
class RegionWorker {
public:
    /// @param done  called on the worker's thread when a result is ready; no function of
    ///              this class may be called from there
    explicit RegionWorker(std::function<void()> done);
    /// Drops the request and waits until `done` is no longer called.
    ~RegionWorker();
    RegionWorker(const RegionWorker&) = delete;
    RegionWorker& operator=(const RegionWorker&) = delete;

    /// Asks for a region of an image, which is shared, not copied.
    void request(const morvend::imglib::MImage& image, const morvend::imglib::MImage& mask,
                 const StatisticsData& region);
    /// Drops the request.
    void cancel();
    /// True if a result was requested and not yet taken.
    bool pending() const { return _job != nullptr; }
    /// The result of the last request if it is finished; this ends the request.
    bool take(RoiStatistics& result);
    /// The same, but waits for it. A request that hasn't begun is computed by the caller.
    bool wait(RoiStatistics& result);

private:
    struct Job;
    class Queue;

    const std::shared_ptr<Queue> _queue;
    const std::function<void()> _done;
    std::shared_ptr<Job> _job;  // null if nothing is requested
};
