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
    std::vector<int> steps{};  ///< TaskOpenIndex goes so many images on from the record's index,
    bool fromAsked = false;    ///< or from the number that was requested last

    /// 1 if all steps go forward, -1 if all go back; 0 for both ways, and for a request that does
    /// not start at the number requested last.
    int way() const;
    /// Takes over a newer request: its steps follow those of this one, but one that names a number
    /// replaces this one.
    void join(const LoaderRequest& newer);
};
