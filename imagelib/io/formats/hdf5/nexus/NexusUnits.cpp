// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The table of units.
#include "imagelib/io/formats/hdf5/nexus/NexusUnits.h"

#include <algorithm>
#include <cctype>
#include <numbers>

namespace morvend::imglib::hdf5 {

namespace {

struct Unit {
    Quantity quantity;
    const char* name;
    double factor;
};

constexpr double Joule = 1 / 1.602176634e-19;

constexpr Unit Units[] = {
    {Quantity::Length, "m", 1},
    {Quantity::Length, "meter", 1},
    {Quantity::Length, "metre", 1},
    {Quantity::Length, "cm", 1e-2},
    {Quantity::Length, "centimeter", 1e-2},
    {Quantity::Length, "centimetre", 1e-2},
    {Quantity::Length, "mm", 1e-3},
    {Quantity::Length, "millimeter", 1e-3},
    {Quantity::Length, "millimetre", 1e-3},
    {Quantity::Length, "um", 1e-6},
    {Quantity::Length, "\u00b5m", 1e-6},
    {Quantity::Length, "\u03bcm", 1e-6},
    {Quantity::Length, "micron", 1e-6},
    {Quantity::Length, "micrometer", 1e-6},
    {Quantity::Length, "micrometre", 1e-6},
    {Quantity::Length, "nm", 1e-9},
    {Quantity::Length, "nanometer", 1e-9},
    {Quantity::Length, "nanometre", 1e-9},
    {Quantity::Length, "angstrom", 1e-10},
    {Quantity::Length, "a", 1e-10},
    {Quantity::Length, "pm", 1e-12},
    {Quantity::Energy, "ev", 1},
    {Quantity::Energy, "electronvolt", 1},
    {Quantity::Energy, "kev", 1e3},
    {Quantity::Energy, "mev", 1e6},
    {Quantity::Energy, "j", Joule},
    {Quantity::Energy, "joule", Joule},
    {Quantity::Time, "s", 1},
    {Quantity::Time, "sec", 1},
    {Quantity::Time, "second", 1},
    {Quantity::Time, "ms", 1e-3},
    {Quantity::Time, "millisecond", 1e-3},
    {Quantity::Time, "us", 1e-6},
    {Quantity::Time, "\u00b5s", 1e-6},
    {Quantity::Time, "\u03bcs", 1e-6},
    {Quantity::Time, "microsecond", 1e-6},
    {Quantity::Time, "ns", 1e-9},
    {Quantity::Time, "nanosecond", 1e-9},
    {Quantity::Time, "min", 60},
    {Quantity::Time, "minute", 60},
    {Quantity::Angle, "deg", 1},
    {Quantity::Angle, "degree", 1},
    {Quantity::Angle, "\u00b0", 1},
    {Quantity::Angle, "rad", 180 / std::numbers::pi},
    {Quantity::Angle, "radian", 180 / std::numbers::pi},
    {Quantity::Angle, "mrad", 0.18 / std::numbers::pi},
    {Quantity::Pixels, "pixel", 1},
    {Quantity::Pixels, "pix", 1},
    {Quantity::Pixels, "px", 1},
    {Quantity::Pixels, "channel", 1},
    {Quantity::Pixels, "1", 1},
    {Quantity::Pixels, "none", 1},
    {Quantity::Pixels, "dimensionless", 1},
    {Quantity::Pixels, "nx_dimensionless", 1},
};

}  // namespace

std::optional<double> unitFactor(Quantity quantity, const std::string& unit)
{
    std::string name = unit;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const bool wavelength = quantity == Quantity::Wavelength;
    for (const Unit& each : Units)
        if (each.quantity == (wavelength ? Quantity::Length : quantity) &&
            (name == each.name || name == std::string(each.name) + "s" ||
             name == std::string(each.name) + "."))
            return wavelength ? each.factor * 1e10 : each.factor;
    return std::nullopt;
}

double factorByMagnitude(double length) { return length >= 1 ? 1e-6 : length >= 0.01 ? 1e-3 : 1; }

}  // namespace morvend::imglib::hdf5
