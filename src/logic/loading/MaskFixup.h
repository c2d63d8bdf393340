// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Gives every image a mask of its size.
#pragma once

#include "imagelib/image/MImage.h"

#include <memory>

struct ImageStatistics;

/// Images without a mask, or with one of another size, get a mask that marks their gap values (see
/// docs/display.md). To save a pass over the pixels, an image first gets the mask that fitted the
/// image before; its statistics then show whether that was right. All images of the process with
/// the same gaps share one mask. Thread: one at a time; several objects may work on several
/// threads.
class MaskFixup {
public:
    using MImage = morvend::imglib::MImage;

    /// @returns the image's pixel mask. An image without a mask of its size gets the one of the
    /// image before, or one of good pixels (32 bits, unsigned); a mask of another size is reported
    /// on standard error.
    MImage operator()(MImage& image);

    /// Replaces the image's mask if its statistics show that the mask given last does not fit.
    /// @returns true if it did: then the statistics are wrong
    bool replaces(MImage& image, const ImageStatistics& statistics);

    /// The right mask without statistics, at the price of a pass over an image without a mask.
    MImage certain(MImage& image);

private:
    /// True if the statistics show that the mask given last is right.
    bool _fits(const MImage& image, const ImageStatistics& statistics) const;
    /// Chooses by the pixels of an image without a mask of its own.
    void _giveByPixels(MImage& image);
    /// Chooses a mask without marks.
    void _giveGoodPixels(const MImage& image);

    std::shared_ptr<const MImage> _goodPixels;
    std::shared_ptr<const MImage> _gaps;  // the mask with marks that was made last
    MImage _given;  // one of the two, or empty where the image has a mask of its own
};
