// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/LevelColours.h"

#include "imagelib/display/MColorMap.h"
#include "imagelib/display/MColorTable.h"
#include "imagelib/image/MImage.h"

#include <algorithm>

using morvend::imglib::MColorMap;
using morvend::imglib::MImage;

namespace panels {

std::vector<QRgb> levelColours(const std::vector<double>& intensities, const ContrastData& contrast)
{
    if (intensities.empty() || !contrast.colorTable)
        return std::vector<QRgb>(intensities.size(), qRgb(0, 0, 0));
    MImage row(int(intensities.size()), 1, 0.0);
    std::ranges::copy(intensities, static_cast<double*>(row.data()));
    MImage colours;
    MColorMap::rgb(colours, row, contrast.foreground, contrast.background, contrast.logForeground(),
                   *contrast.colorTable, "ARGB", nullptr, nullptr, 0, false, false);
    const auto* first = colours.pixels<unsigned int>();
    return {first, first + intensities.size()};
}

}  // namespace panels
