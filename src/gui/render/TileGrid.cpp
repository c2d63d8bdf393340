// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images that are larger than a texture may be, cut into tiles.
#include "gui/render/TileGrid.h"

#include <algorithm>

namespace render {

std::vector<QRect> tilesOf(QSize image, int limit)
{
    if (image.isEmpty() || (limit < 2 && std::max(image.width(), image.height()) > limit))
        return {};
    std::vector<QRect> tiles;
    int top = 0;
    do {
        const int height = std::min(limit, image.height() - top);
        int left = 0;
        do {
            const int width = std::min(limit, image.width() - left);
            tiles.emplace_back(left, top, width, height);
            left += width - 1;
        } while (left + 1 < image.width());
        top += height - 1;
    } while (top + 1 < image.height());
    return tiles;
}

}  // namespace render
