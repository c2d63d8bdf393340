// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The pixels under the mesh of the height map.
#pragma once

#include "imagelib/image/MImage.h"

#include <QRectF>

namespace render {

/// One pixel for each vertex of the mesh over the visible part of an image, in the image's type:
/// what the height map needs if no single texture can hold the image.
/// @param visible  in image pixels
morvend::imglib::MImage plotSample(const morvend::imglib::MImage& image, const QRectF& visible);

}  // namespace render
