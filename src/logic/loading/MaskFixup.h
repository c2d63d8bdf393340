// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Gives every image a mask of its size.
#pragma once

#include "imagelib/image/MImage.h"

/// Remembers the mask of good pixels that it made last, so that all images of a series without
/// masks share one. Thread: one at a time.
class MaskFixup {
public:
    using MImage = morvend::imglib::MImage;

    /// The image's pixel mask. Where the image has none, or one of another size, it gets a mask of
    /// good pixels (32 bits, unsigned). For one of another size a warning goes to standard error.
    MImage operator()(MImage& image);

private:
    MImage _goodPixels;
};
