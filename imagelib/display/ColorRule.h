// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The transfer function for one contrast as tables that a vector loop can follow.
#pragma once

#include "imagelib/display/TransferLevels.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace morvend::imglib {

class MColorTable;

/// What to colour with.
struct ColorSettings {
    double foreground = 1.0;
    double background = 0.0;
    double logForeground = 10000.0;
    const MColorTable* table = nullptr;
    /// Bytes red, green, blue, alpha instead of 32-bit values 0xAARRGGBB.
    bool rgba = false;
    int countCutoff = 0;
    bool highlightDefective = false;
    bool highlightSaturated = false;
};

/// Everything between an intensity of a display type (int, unsigned int, float) and its colour.
///
/// The linear part computes the entry as the shaders do: float(slope) * float(i - background),
/// truncated to an integer. The logarithmic part takes no logarithm: the bits of the float i -
/// background, shifted, name a bin; a bin holds at most one border between entries.
template <class T>
struct ColorRule {
    explicit ColorRule(const ColorSettings& settings);

    T foreground;
    T background;
    /// From here on `topColor`; equal to the foreground where no logarithmic part applies.
    T top;
    T cutoff;
    bool highlightSaturated;
    /// Below it, pixels are in the linear part or at the background, and not saturated; integers
    /// are less than 2^31 above the background.
    T special;
    /// Mask bits that mark a defective pixel; 0 when they aren't highlighted.
    std::uint32_t defectiveBits;
    float slope;

    /// Linear entries, logarithmic entries, then the special colours.
    std::vector<std::uint32_t> colors;
    std::uint32_t lastLinear;
    std::uint32_t topColor;
    std::uint32_t saturatedColor;
    std::uint32_t black;
    std::uint32_t defectiveColor;

    /// For each bin the index of its first color (upper 16 bits), and the highest value of its
    /// low bits that still has this color (lower 16 bits); beyond it comes the next one.
    std::vector<std::uint32_t> bins;
    /// Float bits >> binShift, less firstBin, are the bin.
    int binShift = 16;
    std::uint32_t firstBin = 0;

private:
    void _makeColors(const ColorSettings& settings);
    void _makeBins(const TransferLevels<T>& levels, std::size_t logSize);
    bool _fillBins(const std::vector<std::uint32_t>& borders, std::uint32_t lowest,
                   std::uint32_t highest);
};

extern template struct ColorRule<int>;
extern template struct ColorRule<unsigned int>;
extern template struct ColorRule<float>;

}  // namespace morvend::imglib
