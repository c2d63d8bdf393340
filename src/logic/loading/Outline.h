// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An image without its pixels.
#pragma once

#include "imagelib/image/MImage.h"

#include <utility>

/// Header, type and size of an image whose pixels are packed elsewhere: cdata() is null.
inline morvend::imglib::MImage outlineOf(const morvend::imglib::MImage& image)
{
    const auto& pixels = image.imageData();
    morvend::imglib::MImage outline(image.width(), image.height(),
                                    {nullptr, pixels.type(), pixels.typeBits(), pixels.size()});
    outline.setOptionalData(image.optionalData());
    return outline;
}
