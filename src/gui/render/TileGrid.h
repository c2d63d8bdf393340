// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images that are larger than a texture may be, cut into tiles.
#pragma once

#include <QRect>
#include <QSize>

#include <vector>

namespace render {

/// Tiles of at most limit * limit pixels that together are an image, row by row.
/// @returns one tile for an image that fits, none where the limit is below 2 and the image above
std::vector<QRect> tilesOf(QSize image, int limit);

}  // namespace render
