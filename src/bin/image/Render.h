// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The command "render": a picture of an image.
#pragma once

#include "bin/image/Arguments.h"

#include <cstdint>
#include <vector>

namespace morvend::imglib {
class MImage;
}

namespace tarvik::tool {

/// A picture as rows of 0xAARRGGBB values.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

/// Writes the image as a PNG picture with the colours of the viewer.
/// @throws UsageError for an unknown table, MException for the rest
class Render {
public:
    static void run(const Arguments& arguments);

    /// The picture of an image; pixels are enlarged or left out, never blended.
    static Picture paint(const morvend::imglib::MImage& image, const Arguments& arguments);
};

}  // namespace tarvik::tool
