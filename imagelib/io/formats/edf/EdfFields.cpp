// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Values with units.
#include "imagelib/io/formats/edf/EdfFields.h"

#include "imagelib/io/formats/edf/EdfHeader.h"

#include <charconv>
#include <cmath>
#include <span>

namespace morvend::imglib::edf {

namespace {

struct Unit {
    std::string_view name;  // empty: what a number without a unit means
    double factor;
};

constexpr Unit Lengths[] = {{"", 1},      {"m", 1},           {"cm", 1e-2},         {"mm", 1e-3},
                            {"um", 1e-6}, {"micron", 1e-6},   {"micrometer", 1e-6}, {"nm", 1e-9},
                            {"A", 1e-10}, {"Angstrom", 1e-10}};
constexpr Unit Times[] = {{"", 1}, {"s", 1}, {"sec", 1}, {"ms", 1e-3}, {"us", 1e-6}, {"min", 60}};
constexpr Unit Energies[] = {{"eV", 1}, {"keV", 1e3}};
constexpr Unit Pixels[] = {{"", 1}, {"pixel", 1}, {"pixels", 1}, {"px", 1}};

constexpr double AngstromPerMetre = 1e10;
constexpr double ElectronvoltAngstrom = 12398.42;

/// The number of a text such as "909.99mm" or "7.0 keV" in the base unit.
boost::optional<double> quantity(std::string_view text, std::span<const Unit> units)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number))
        return boost::none;
    text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    for (const Unit& unit : units)
        if (sameWithoutCase(text, unit.name))
            return number * unit.factor;
    return boost::none;
}

/// The first of some keys that has a usable value.
boost::optional<double> find(const EdfHeader& header, std::span<const Unit> units,
                             std::initializer_list<std::string_view> keys)
{
    for (const std::string_view key : keys)
        if (const auto text = header.value(key))
            if (const auto number = quantity(*text, units))
                return number;
    return boost::none;
}

boost::optional<double> wavelength(const EdfHeader& header)
{
    if (const auto metres = find(header, Lengths, {"WaveLength"}))
        return *metres * AngstromPerMetre;
    // Without a unit an energy may be in eV or in keV: not read.
    const auto energy = find(header, Energies, {"Energy"});
    if (energy && *energy > 0)
        return ElectronvoltAngstrom / *energy;
    return boost::none;
}

}  // namespace

void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header)
{
    const auto set = [&](auto setter, const boost::optional<double>& value) {
        if (value)
            (header.*setter)(static_cast<float>(*value));
    };
    using Header = MBasicImageOptionalData<>;
    using Setter = void (Header::*)(const float&);
    set(Setter(&Header::set_beam_center_x), find(from, Pixels, {"Center_1"}));
    set(Setter(&Header::set_beam_center_y), find(from, Pixels, {"Center_2"}));
    set(Setter(&Header::set_detector_distance), find(from, Lengths, {"SampleDistance"}));
    set(Setter(&Header::set_wavelength), wavelength(from));
    set(Setter(&Header::set_x_pixel_size), find(from, Lengths, {"PSize_1"}));
    set(Setter(&Header::set_y_pixel_size), find(from, Lengths, {"PSize_2"}));
    set(Setter(&Header::set_count_time), find(from, Times, {"ExposureTime", "count_time"}));
    for (const std::string_view key : {"Date", "time_of_day"})
        if (const auto date = from.value(key); date && !date->empty()) {
            header.set_data_collection_date(std::string(*date));
            break;
        }
    header.set_rawHeader(from.shownText());
}

}  // namespace morvend::imglib::edf
