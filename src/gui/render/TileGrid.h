// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Images larger than the texture limit, cut into tiles.
#pragma once

#include <QRect>
#include <QSize>

#include <vector>

namespace render {

/// Tiles of at most limit * limit pixels that together form an image, row by row.
/// @returns one tile for an image that fits, none if the limit is below 2 and the image larger
std::vector<QRect> tilesOf(QSize image, int limit);

}  // namespace render
