// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Replacing masks that are missing or of the wrong size.
#include "logic/loading/MaskFixup.h"

#include "logic/support/Console.h"

using morvend::imglib::MImage;

namespace {

bool sameSize(const MImage& left, const MImage& right)
{
    return left.width() == right.width() && left.height() == right.height();
}

}  // namespace

MImage MaskFixup::operator()(MImage& image)
{
    const MImage mask = image.optionalData().pixel_mask().get_value_or(MImage());
    if (!mask.empty() && sameSize(mask, image))
        return mask;
    if (!mask.empty())
        console::warn("WARNING: Size of pixel mask does not match size of image\n");
    if (!sameSize(_goodPixels, image))
        _goodPixels = MImage(image, 0U);
    image.optionalData().set_pixel_mask(_goodPixels);
    return _goodPixels;
}
