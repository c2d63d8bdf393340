// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The reduced images that a view shows below 1:1.
#pragma once

#include "gui/render/DisplayImage.h"
#include "imagelib/display/BlockMaxima.h"

#include <array>
#include <memory>

namespace render {

/// An image whose pixels stand for blocks of another one.
struct ReducedImage {
    const DisplayImage* image = nullptr;  ///< null for none: the image itself is shown
    int side = 1;                         ///< of a block
};

/// Largest pixels of blocks, or none; shares their pixels. A value.
class ReducedImages {
public:
    ReducedImages() = default;
    explicit ReducedImages(std::shared_ptr<const morvend::imglib::BlockMaxima> maxima)
    {
        if (maxima)
            _images = {DisplayImage(maxima->halves), DisplayImage(maxima->quarters)};
    }

    /// The one for a number of screen pixels for each image pixel: its blocks are no smaller than
    /// what a screen pixel covers, so that none is left out.
    ReducedImage forScale(double scale) const
    {
        if (scale >= 1 || _images[0].empty())
            return {};
        return scale >= 0.5 ? ReducedImage{&_images[0], 2} : ReducedImage{&_images[1], 4};
    }

private:
    std::array<DisplayImage, 2> _images;
};

}  // namespace render
