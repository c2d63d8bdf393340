// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What the read-ahead has of a series.
#pragma once

#include "imagelib/image/NumberRange.h"

#include <map>
#include <string>
#include <vector>

/// A value. Numbers are image numbers of the series.
struct ReadAhead {
    /// More than these are not listed: nobody could tell them apart on a screen.
    static constexpr std::size_t MostRuns = 2000;
    static constexpr std::size_t MostFailures = 200;
    /// Bytes of one reason.
    static constexpr std::size_t LongestReason = 400;

    /// Images that a step would find.
    std::vector<morvend::imglib::NumberRange> held;
    /// Images that could not be read, with the reasons.
    std::map<int, std::string> failed;
    bool operator==(const ReadAhead&) const = default;
};
