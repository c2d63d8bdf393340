// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What is known of the images of a series without reading them.
#pragma once

#include "imagelib/image/NumberRange.h"
#include "logic/preload/ReadAhead.h"

#include <map>
#include <memory>
#include <string>

/// A value whose copies share their content. What does not apply is null.
struct SeriesState {
    /// Most failures that are remembered.
    static constexpr std::size_t MostFailures = 1000;
    using Failures = std::map<int, std::string>;  ///< reasons by image number

    int first = -1;  ///< lowest number, -1 for an empty series
    int last = -1;
    morvend::imglib::NumberRanges gaps;          ///< numbers without image
    std::shared_ptr<const Failures> failed;      ///< images that this view could not read
    std::shared_ptr<const ReadAhead> readAhead;  ///< when that was last looked at
};
