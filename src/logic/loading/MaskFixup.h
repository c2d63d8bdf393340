// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Gives every image a mask of its size.
#pragma once

#include "imagelib/image/MImage.h"

#include <memory>

struct ImageStatistics;

/// Images without a mask, or with one of another size, get a mask that marks their gap values (see
/// docs/display.md). Which ones these are is known without a look at all pixels once there are
/// statistics: so the image is first given the mask that fitted the one before, and another one
/// where that turns out wrong. All images of the process with the same gaps share one mask, as long
/// as some object has it.
/// Thread: one at a time; several objects may work on several threads.
class MaskFixup {
public:
    using MImage = morvend::imglib::MImage;

    /// The image's pixel mask. Where it has none that fits, it gets the one of the image before, or
    /// one of good pixels (32 bits, unsigned). For one of another size a warning goes to standard
    /// error.
    MImage operator()(MImage& image);

    /// Whether the image's mask had to be replaced, now that its statistics under the mask that it
    /// was given last are known. They are wrong then.
    bool replaces(MImage& image, const ImageStatistics& statistics);

private:
    bool _fits(const MImage& image, const ImageStatistics& statistics) const;
    void _giveGoodPixels(const MImage& image);

    std::shared_ptr<const MImage> _goodPixels;
    std::shared_ptr<const MImage> _gaps;  // the mask with marks that was made last
    MImage _given;  // one of the two, or empty where the image has a mask of its own
};
