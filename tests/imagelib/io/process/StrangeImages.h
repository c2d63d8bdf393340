// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The images of the strange reader, as it makes them and as its tests expect them.
#pragma once

#include "imagelib/image/MImage.h"

#include <string>

namespace tarvik::tests {

/// What becomes of the reader at each position.
enum StrangeImage {
    Good,
    Violates,
    Aborts,
    Exits,
    Hangs,
    Babbles,
    Refuses,
    Throws,
    AlsoGood,
    MasksItsMask,
    SmallAndGood,
    StrangeImages
};

inline const std::string FatalPath = "/data/fatal";
inline const std::string FatalUpdatePath = "/data/fatal_update";
inline const std::string HangingPath = "/data/hanging";
inline const std::string MissingPath = "/data/missing";

/// Large enough to cross in shared memory, but for the small one; each position has other pixels.
inline morvend::imglib::MImage strangeImage(std::size_t position)
{
    const int side = position == SmallAndGood ? 3 : 600;
    morvend::imglib::MImage image(side, side, static_cast<unsigned short>(position));
    static_cast<unsigned short*>(image.data())[1] = 4711;
    auto& header = image.optionalData();
    header.set_wavelength(1.25f);
    header.set_rotation_angle(static_cast<float>(position));
    header.set_rawHeader(std::string("raw header"));
    morvend::nexus::MBasicNeXusTree tree;
    tree.setNumber("/entry/number", 42);
    header.setNexusTree(std::move(tree));
    if (position != SmallAndGood) {
        morvend::imglib::MImage mask(side, side, 5u);
        if (position == MasksItsMask)
            mask.optionalData().set_pixel_mask(morvend::imglib::MImage(side, side, 6u));
        header.set_pixel_mask(std::move(mask));
    }
    return image;
}

}  // namespace tarvik::tests
