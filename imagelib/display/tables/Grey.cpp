// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Black to white.
#include "imagelib/display/tables/ColorTableData.h"

namespace morvend::imglib {

// All greys, each once.
ColorTableData greyTable()
{
    std::vector<unsigned char> entries;
    for (unsigned grey = 0; grey < 256; ++grey) {
        entries.insert(entries.end(), 3, static_cast<unsigned char>(grey));
        entries.push_back(255);
    }
    return {"Grey Scale", entries, {}, 0xff2a2a, 0x2f7dff};
}

}  // namespace morvend::imglib
