// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Glowing metal: black, red, yellow, white.
#include "imagelib/display/tables/ColorTableData.h"

namespace morvend::imglib {

ColorTableData heatTable()
{
    return {"Heat",
            colorRamp({0x120408, 0x5a0a12, 0xb01a10, 0xee5a0a, 0xffa81e, 0xffe67a, 0xffffff}, 1024),
            {},
            0x00d060,
            0x2f7dff};
}

}  // namespace morvend::imglib
