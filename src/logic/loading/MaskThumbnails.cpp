// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Looks for a mask that was seen before.
#include "logic/loading/MaskThumbnails.h"

#include "logic/loading/Thumbnail.h"

#include <utility>

using morvend::imglib::MImage;

bool MaskThumbnails::Known::shows(const MImage& mask) const
{
    // Images of other types and sizes may show the same memory.
    return identity == mask.identity() && width == mask.width() && height == mask.height() &&
           type == mask.type() && bits == mask.typeBits();
}

MImage MaskThumbnails::of(const MImage& mask)
{
    if (!_known[0].shows(mask)) {
        std::swap(_known[0], _known[1]);
        if (!_known[0].shows(mask))
            _known[0] = {mask.identity(), mask.width(),    mask.height(),
                         mask.type(),     mask.typeBits(), thumbnail::ofMask(mask)};
    }
    return _known[0].thumbnail;
}
