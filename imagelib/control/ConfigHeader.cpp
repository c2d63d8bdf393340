// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/ConfigHeader.h"

#include <cmath>
#include <limits>

namespace morvend::imglib {
namespace {

using Header = MBasicImageOptionalData<>;

const std::string Detector = "/entry/instrument/detector/";
constexpr double ElectronVoltAngstroms = 12398.42;

boost::optional<double> number(const nexus::MBasicNeXusTree& config, const std::string& path)
{
    const nexus::Node* const node = config.find(path);
    if (!node)
        return {};
    if (const auto* integer = std::get_if<std::int64_t>(&node->value))
        return double(*integer);
    const auto* real = std::get_if<double>(&node->value);
    return real && std::abs(*real) <= std::numeric_limits<float>::max()
               ? boost::optional<double>(*real)
               : boost::none;
}

boost::optional<std::string> text(const nexus::MBasicNeXusTree& config, const std::string& path)
{
    const nexus::Node* const node = config.find(path);
    const auto* found = node ? std::get_if<std::string>(&node->value) : nullptr;
    return found ? boost::optional<std::string>(*found) : boost::none;
}

}  // namespace

Header headerFromConfig(nexus::MBasicNeXusTree config)
{
    Header header;
    const auto fill = [&](const std::string& path, void (Header::*set)(const float&)) {
        if (const auto value = number(config, path))
            (header.*set)(static_cast<float>(*value));
    };
    fill(Detector + "beam_center_x", &Header::set_beam_center_x);
    fill(Detector + "beam_center_y", &Header::set_beam_center_y);
    fill(Detector + "distance", &Header::set_detector_distance);
    fill(Detector + "x_pixel_size", &Header::set_x_pixel_size);
    fill(Detector + "y_pixel_size", &Header::set_y_pixel_size);
    fill(Detector + "sensor_thickness", &Header::set_sensor_thickness);
    fill(Detector + "threshold_energy", &Header::set_threshold_energy);
    fill(Detector + "count_time", &Header::set_count_time);
    fill(Detector + "frame_time", &Header::set_frame_time);
    const auto energy = number(config, Detector + "photon_energy");
    if (energy && *energy > 0)
        header.set_wavelength(static_cast<float>(ElectronVoltAngstroms / *energy));
    const auto saturation = number(config, Detector + "saturation_value");
    if (saturation && *saturation > 0 && *saturation <= std::numeric_limits<int>::max())
        header.set_saturation_value(static_cast<int>(*saturation));
    header.set_description(text(config, Detector + "description"));
    header.set_detector_number(text(config, Detector + "detector_number"));
    header.set_data_collection_date(text(config, "/entry/start_time"));
    if (header.wavelength())  // of the header's own tree, which the configuration replaces
        config.setNumber("/entry/instrument/beam/wavelength", double(*header.wavelength()),
                         "angstrom");
    header.setNexusTree(std::move(config));
    return header;
}

}  // namespace morvend::imglib
