// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/FrameTypes.h"

morvend::imglib::MImage withHeader(const ImageData& frame, const OptionalData& header)
{
    morvend::imglib::MImage image = frame;
    image.setOptionalData(header);
    const auto& mask = header.pixel_mask();
    if (mask && (mask->width() != frame.width() || mask->height() != frame.height()))
        image.optionalData().set_pixel_mask(boost::none);
    return image;
}
