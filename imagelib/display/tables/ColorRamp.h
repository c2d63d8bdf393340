// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Colour ramps in steps that look even, made from a few anchor colours.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace morvend::imglib {

/// An opaque sRGB colour, 0xRRGGBB.
using Rgb = std::uint32_t;
/// Lightness 0 to 100, and the green-red and blue-yellow axes of CIE 1976 L*a*b*, white D65.
using Lab = std::array<double, 3>;

Lab labFromRgb(Rgb color);
/// Colours outside sRGB are moved to its border.
Rgb rgbFromLab(const Lab& lab);

/// Colours as they are, as BGRA bytes.
std::vector<unsigned char> bgraEntries(std::span<const Rgb> colors);

/// `size` colours from the first to the last anchor through all of them, as BGRA bytes. Entries
/// are at even steps of CIE distance along the curve, so that equal steps of the table look equally
/// large.
std::vector<unsigned char> colorRamp(const std::vector<Rgb>& anchors, std::size_t size);

}  // namespace morvend::imglib
