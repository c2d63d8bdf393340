// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Factors from the units of NeXus files to those of the image header.
#pragma once

#include <optional>
#include <string>

namespace morvend::imglib::hdf5 {

/// What a value measures, with the unit of the image header.
enum class Quantity {
    Length,      ///< m
    Wavelength,  ///< Angstrom
    Energy,      ///< eV
    Time,        ///< s
    Angle,       ///< degrees
    Pixels       ///< pixels
};

/// The factor to the unit of the header. Units are compared without case; "micron", "um",
/// "micrometre" and the like are one. Nothing for an empty or unknown unit.
std::optional<double> unitFactor(Quantity quantity, const std::string& unit);

/// The factor for a small length (pixel size, thickness) that carries no unit, by its magnitude:
/// from 1 on micrometres, from 0.01 on millimetres, metres below.
double factorByMagnitude(double length);

}  // namespace morvend::imglib::hdf5
