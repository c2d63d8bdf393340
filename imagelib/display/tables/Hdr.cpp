// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The table of two parts: every count up to the foreground, then four decades above it.
#include "imagelib/display/tables/ColorTableData.h"

namespace morvend::imglib {

// Linear part: white paper, photons as ink. A gap of the detector is black and so differs clearly
// from pixels without photons. Logarithmic part: from the dark end of the ink through a glow that
// gets lighter with each decade: violet, red, orange, yellow.
ColorTableData hdrTable()
{
    return {"High Dynamic Range",
            colorRamp({0xffffff, 0xc4c9d1, 0x8a8fa0, 0x545570, 0x241a3d}, 1024),
            colorRamp({0x241a3d, 0x6b1f7a, 0xb3246b, 0xe0402e, 0xf58a12, 0xffe84a}, 1024), 0x00e5ff,
            0x1e6bff};
}

}  // namespace morvend::imglib
