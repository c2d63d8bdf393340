// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which intensity maxima a view shows.
#pragma once

#include <set>

/// The selection of peaks, shared by the views of a group. A value.
class PeakData {
public:
    PeakData() = default;
    virtual ~PeakData() = default;
    PeakData(const PeakData&) = default;
    PeakData& operator=(const PeakData&) = default;

    bool operator==(const PeakData& other) const = default;

    /// True if a selection was ever made.
    bool defined = false;
    /// How many of the strongest peaks are shown; 0 means that the peak finder is off.
    int numberOfPeaks = 0;
    /// Indices of the peaks highlighted in the table and in the image.
    std::set<int> highlightedPeaks;
};
