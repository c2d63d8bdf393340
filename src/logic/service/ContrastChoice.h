// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a view's contrast is to span.
#pragma once

#include "logic/analysis/statistics/ContrastRange.h"

/// A value.
struct ContrastChoice {
    ContrastRange range;
    bool partInView = false;  ///< of the pixels on show, instead of all
    bool follows = false;     ///< chosen anew for each image

    bool operator==(const ContrastChoice&) const = default;
};
