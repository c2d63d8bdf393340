// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// An image with the way in which it is shown, for work elsewhere.
#pragma once

#include "imagelib/image/MImage.h"
#include "logic/records/ContrastData.h"

/// What a view shows at one moment. Pixels are shared by reference, so that a copy costs nothing
/// and the view may go on or close meanwhile. A value.
struct ImageSnapshot {
    using MImage = morvend::imglib::MImage;

    MImage image;  ///< empty without image
    MImage mask;
    /// Its colour table is never null where there is an image.
    ContrastData contrast;
    bool highlightDefective = true;
    bool highlightSaturated = true;
};
