// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The colours of the spectrum, from dark blue to dark red.
#include "imagelib/display/tables/ColorTableData.h"

namespace morvend::imglib {

ColorTableData rainbowTable()
{
    return {
        "Rainbow",
        colorRamp({0x1a1a6b, 0x1f5fe0, 0x12b5d0, 0x2fcb5a, 0xd8e02a, 0xf58a12, 0xc4200e, 0x6b0a12},
                  1024),
        {},
        0xff3cf0,
        0x8c8c8c};
}

}  // namespace morvend::imglib
