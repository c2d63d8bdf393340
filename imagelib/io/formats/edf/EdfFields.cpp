// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Values with units.
#include "imagelib/io/formats/edf/EdfFields.h"

#include "imagelib/io/formats/base/HeaderWords.h"
#include "imagelib/io/formats/edf/EdfHeader.h"

#include <cmath>
#include <limits>
#include <optional>

namespace morvend::imglib::edf {

namespace {

using Header = MBasicImageOptionalData<>;
using Setter = void (Header::*)(const float&);

constexpr Unit Lengths[] = {{"m", 1},     {"cm", 1e-2},     {"mm", 1e-3},
                            {"um", 1e-6}, {"micron", 1e-6}, {"microns", 1e-6},
                            {"nm", 1e-9}, {"A", 1e-10},     {"Angstrom", 1e-10}};
constexpr Unit Times[] = {{"s", 1}, {"sec", 1}, {"ms", 1e-3}, {"us", 1e-6}, {"min", 60}};

constexpr double AngstromPerMetre = 1e10;

/// The value of a key in the base unit, which a number without a unit has already.
std::optional<double> find(const EdfHeader& header, std::string_view key, Units units)
{
    if (const auto found = quantityAt(wordsOf(header.value(key).value_or("")), 0, units))
        return found->value * found->factor.value_or(1);
    return std::nullopt;
}

std::optional<double> wavelength(const EdfHeader& header)
{
    if (const auto metres = find(header, "WaveLength", Lengths))
        return *metres * AngstromPerMetre;
    // Without a unit an energy may be in eV or in keV: it is left alone.
    const auto energy = quantityAt(wordsOf(header.value("Energy").value_or("")), 0, EnergyUnits);
    if (energy && energy->factor && energy->value > 0)
        return ElectronVoltAngstrom / (energy->value * *energy->factor);
    return std::nullopt;
}

}  // namespace

void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header)
{
    const auto set = [&](Setter setter, const std::optional<double>& value) {
        if (value && std::abs(*value) <= double(std::numeric_limits<float>::max()))
            (header.*setter)(static_cast<float>(*value));
    };
    set(&Header::set_beam_center_x, find(from, "Center_1", {}));
    set(&Header::set_beam_center_y, find(from, "Center_2", {}));
    set(&Header::set_detector_distance, find(from, "SampleDistance", Lengths));
    set(&Header::set_wavelength, wavelength(from));
    set(&Header::set_x_pixel_size, find(from, "PSize_1", Lengths));
    set(&Header::set_y_pixel_size, find(from, "PSize_2", Lengths));
    set(&Header::set_count_time, find(from, "count_time", Times));
    set(&Header::set_count_time, find(from, "ExposureTime", Times));
    for (const std::string_view key : {"Date", "time_of_day"})
        if (const auto date = from.value(key); date && !date->empty()) {
            header.set_data_collection_date(std::string(*date));
            break;
        }
    header.set_rawHeader(from.shownText());
}

}  // namespace morvend::imglib::edf
