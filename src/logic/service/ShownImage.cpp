// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/service/ShownImage.h"

#include <utility>

const ShownImage::MImage& ShownImage::whole()
{
    if (loaded() && !std::as_const(image).cdata()) {
        MImage unpacked = packed->unpacked();
        unpacked.setOptionalData(std::as_const(image).optionalData());
        image = std::move(unpacked);
    }
    return image;
}

void ShownImage::dropPixels()
{
    if (packed)
        image = morvend::codec::PackedPixels::outline(image);
}
