// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colours runs of pixels of any type, for callers that own the colours' memory.
#pragma once

#include "imagelib/display/ColorRule.h"

#include <span>
#include <variant>

namespace morvend::imglib {

class MImage;

/// The transfer function prepared for one contrast and one kind of pixels. Making one costs some
/// 0.1 ms; it then serves any number of images and rows.
/// Thread: any; run() may be called from several threads at once.
class ColorMapper {
public:
    /// @param type  type of the images to come
    ColorMapper(const ColorSettings& settings, datatypes::Type type);

    /// Colours as many pixels as `colors` holds, in storage order from index `first` on: part of a
    /// row, a row or the whole image.
    /// @param mask  null or an image of the same size
    void run(std::span<std::uint32_t> colors, const MImage& image, const MImage* mask,
             std::size_t first) const;

private:
    std::variant<ColorRule<int>, ColorRule<unsigned int>, ColorRule<float>> _rule;
};

}  // namespace morvend::imglib
