// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The keys of header texts, in all spellings, with units and defaults
// (docs/formats/header-keys.md).
#pragma once

#include "imagelib/io/formats/base/HeaderWords.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace morvend::imglib {

/// What a key states.
enum class HeaderItem : unsigned char {
    Detector,
    DetectorNumber,
    Date,
    PixelSizeX,
    PixelSizeY,
    SensorThickness,
    ExposureTime,
    ExposurePeriod,
    CountCutoff,
    Threshold,
    Wavelength,
    Distance,
    BeamX,
    BeamY,
    Flux,
    Transmission,
    StartAngle,
    AngleIncrement,
};
inline constexpr std::size_t HeaderItems = std::size_t(HeaderItem::AngleIncrement) + 1;

/// One spelling of a key.
struct HeaderKey {
    enum Shape : unsigned char {
        Number,
        Pair,    ///< numbers for the item and for the next one; a single size is that of both
        Energy,  ///< in eV, of the photons whose wavelength is the item
        Text,
        Description,  ///< text, which may end with a serial number
    };

    std::string_view name;  ///< letters and digits in lower case
    HeaderItem item;
    Shape shape = Number;
    Units units = {};
    /// Bare numbers have the unit of the field if their magnitude is in this range.
    double least = 0;
    double below = 0;
    /// The spelling that we write, or one that we update like it.
    bool own = false;

    bool takesBare(double value) const;
};

/// In the order of precedence for each item.
std::span<const HeaderKey> headerKeys();

/// The key that a line begins with, by as many of its words as possible, up to a ':' or '='.
struct KeyMatch {
    const HeaderKey* key = nullptr;
    std::size_t words = 0;
};
KeyMatch matchKey(const Words& words);

/// Units of lengths in m. A beam centre has them too, if it is not in pixels.
extern const Units Metres;
extern const Units PixelCounts;

}  // namespace morvend::imglib
