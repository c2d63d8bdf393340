// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a view asks its loader for.
#pragma once

#include "logic/loading/LoaderData.h"

#include <vector>

/// A request for one image. A value.
struct LoaderRequest {
    enum Task {
        TaskOpenSeries = 0,  ///< open the series of the record's path at the image it names
        TaskOpenIndex = 1,   ///< go to the number in the record's index, in the open series
        TaskPushImage = 2    ///< append the record's image to a series in memory
    };

    Task task;
    LoaderData data;
    bool signalLoadError;      ///< false keeps a failure quiet
    std::vector<int> steps{};  ///< of TaskOpenIndex: images to go from the record's index
    bool fromAsked = false;    ///< go from the number requested last instead

    /// 1 or -1 for steps from the number asked for last that all go that way, 0 for anything else.
    int way() const;
    /// Becomes a newer request by number, or adds its steps to those of this one.
    void join(const LoaderRequest& newer);
};
