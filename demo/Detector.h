// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The detector of the demo data: modules with gaps between them, and defective pixels.
#pragma once

#include "imagelib/image/MImage.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik::demo {

/// A flat panel perpendicular to the beam. Positions in pixels, lengths in metres.
struct Detector {
    std::string name;  ///< short, for folders: "1m"
    int modulesX = 2, modulesY = 4;
    int moduleWidth = 512, moduleHeight = 256;
    int gapX = 8, gapY = 16;
    double pixelSize = 100e-6;
    double distance = 0.15;

    int width() const { return modulesX * (moduleWidth + gapX) - gapX; }
    int height() const { return modulesY * (moduleHeight + gapY) - gapY; }
    /// The direct beam, a little off the centre as in real life.
    double beamX() const { return 0.5 * width() + 3.25; }
    double beamY() const { return 0.5 * height() - 6.5; }
};

/// "small", "1m", "4m" or "16m". @throws MBadParameterException for any other name
Detector detectorNamed(const std::string& name);

/// Counts from which on pixels are saturated.
constexpr int CountCutoff = 60000;

/// Meaning of a pixel, as the bits of a NeXus pixel mask.
enum MaskBit : unsigned { Gap = 1, Dead = 2, Noisy = 16 };

/// The mask of a detector, and the hot pixels that it doesn't mark.
struct Defects {
    morvend::imglib::MImage mask;  ///< unsigned int, bits of MaskBit
    std::vector<std::size_t> unnoticedHot;
};
Defects makeDefects(const Detector& detector, std::uint64_t seed);

}  // namespace tarvik::demo
