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
    const QRect whole(QPoint(0, 0), image);
    for (int top = 0; top < image.height(); top += limit)
        for (int left = 0; left < image.width(); left += limit)
            tiles.push_back(QRect(left, top, limit, limit) & whole);
    return tiles;
}

}  // namespace render
