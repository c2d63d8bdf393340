// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A run of image numbers.
#pragma once

#include <memory>
#include <vector>

namespace morvend::imglib {

/// Both ends are in it.
struct NumberRange {
    int first;
    int last;
    bool operator==(const NumberRange&) const = default;
};

/// By rising numbers, without overlap; shared, since copies go from thread to thread.
using NumberRanges = std::shared_ptr<const std::vector<NumberRange>>;

}  // namespace morvend::imglib
