// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A crystal that turns in the beam, and where its reflections meet the detector.
#pragma once

#include "demo/Detector.h"

#include <cstdint>
#include <vector>

namespace tarvik::demo {

constexpr double Wavelength = 1.0;   // Angstrom
constexpr double StartAngle = 30.0;  // degrees, first frame
constexpr double AngleStep = 0.5;    // degrees a frame

/// A reflection that passes through the Ewald sphere during the series.
struct Reflection {
    double x, y;       ///< place on the detector, pixels
    double frame;      ///< when it fulfils the Bragg condition, in frames from the start
    double intensity;  ///< photons of the whole reflection
};

/// The reflections of an orthorhombic crystal, its orientation drawn from the seed, that rotates
/// about the horizontal axis by AngleStep a frame. Those just before and after the series are
/// included, as they are seen in part.
std::vector<Reflection> reflections(const Detector& detector, int frames, std::uint64_t seed);

/// The part of a reflection's photons that falls into a frame, from 0 to 1: its crystal is a
/// mosaic.
double partIn(int frame, double reflectionFrame);

}  // namespace tarvik::demo
