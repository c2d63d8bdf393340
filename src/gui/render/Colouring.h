// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Everything that decides the colour of a pixel besides its value and its mask.
#pragma once

#include "imagelib/display/MColorTable.h"
#include "logic/records/ContrastData.h"

#include <optional>

namespace render {

/// Contrast and special colours of one view; a value.
struct Colouring {
    /// Its colour table is never null here: the maker puts the default in its place.
    ContrastData contrast;
    /// From this intensity on a pixel shows the table's colour of saturation; empty for no such
    /// highlighting.
    std::optional<int> saturation;
    bool highlightDefective = false;
};

}  // namespace render
