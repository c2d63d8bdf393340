// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a colour table consists of, and the makers of the tables.
#pragma once

#include "imagelib/display/tables/ColorRamp.h"

#include <string>

namespace morvend::imglib {

struct ColorTableData {
    std::string identifier;
    /// BGRA bytes; the number of entries is a power of two.
    std::vector<unsigned char> linear;
    /// The same, or empty.
    std::vector<unsigned char> logarithmic;
    Rgb saturated;
    Rgb defective;
};

ColorTableData hdrTable();
ColorTableData greyTable();
ColorTableData heatTable();
ColorTableData rainbowTable();
ColorTableData viridisTable();
ColorTableData cividisTable();

}  // namespace morvend::imglib
