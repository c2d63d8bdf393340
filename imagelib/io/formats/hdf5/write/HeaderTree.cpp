// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The place of each header field in an NXmx file.
#include "imagelib/io/formats/hdf5/write/HeaderTree.h"

#include <charconv>
#include <cmath>

namespace morvend::imglib::hdf5 {

namespace {

using Header = MBasicImageOptionalData<>;

const std::string Entry = "/entry/";
const std::string Beam = "/entry/instrument/beam/";
const std::string Detector = "/entry/instrument/detector/";

struct NumberField {
    const boost::optional<float>& (Header::*get)() const;
    std::string path;
    std::string units;
};

const std::vector<NumberField>& numberFields()
{
    static const std::vector<NumberField> fields = {
        {&Header::beam_center_x, Detector + "beam_center_x", "pixel"},
        {&Header::beam_center_y, Detector + "beam_center_y", "pixel"},
        {&Header::detector_distance, Detector + "detector_distance", "m"},
        {&Header::detector_distance, Detector + "distance", "m"},
        {&Header::wavelength, Beam + "wavelength", "angstrom"},
        {&Header::wavelength, Beam + "incident_wavelength", "angstrom"},
        {&Header::x_pixel_size, Detector + "x_pixel_size", "m"},
        {&Header::y_pixel_size, Detector + "y_pixel_size", "m"},
        {&Header::rotation_angle_step, "/entry/sample/goniometer/omega_range_average", "deg"},
        {&Header::filter_transmission, "/entry/instrument/attenuator/attenuator_transmission", ""},
        {&Header::sensor_thickness, Detector + "sensor_thickness", "m"},
        {&Header::threshold_energy, Detector + "threshold_energy", "eV"},
        {&Header::count_time, Detector + "count_time", "s"},
        {&Header::frame_time, Detector + "frame_time", "s"},
        {&Header::beam_flux, Beam + "total_flux", "Hz"},
    };
    return fields;
}

struct TextField {
    const boost::optional<std::string>& (Header::*get)() const;
    std::string path;
};

const std::vector<TextField>& textFields()
{
    static const std::vector<TextField> fields = {
        {&Header::data_collection_date, Entry + "start_time"},
        {&Header::data_collection_date, Detector + "detectorSpecific/data_collection_date"},
        {&Header::description, Detector + "description"},
        {&Header::detector_number, Detector + "detector_number"},
        {&Header::imageDescription, Entry + "title"},
    };
    return fields;
}

void setClass(nexus::MBasicNeXusTree& tree, const std::string& group, const std::string& name)
{
    nexus::Node& node = tree.node(group);
    node.value = {};  // whatever the tree says, this is a group
    node.attributes.emplace("NX_class", name);
}

}  // namespace

double exactDecimal(float value)
{
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    double exact = double(value);
    if (std::isfinite(value))
        std::from_chars(digits, end, exact);
    return exact;
}

void addHeader(nexus::MBasicNeXusTree& tree, const Header& header)
{
    setClass(tree, "/entry", "NXentry");
    setClass(tree, "/entry/data", "NXdata");
    setClass(tree, "/entry/sample", "NXsample");
    setClass(tree, "/entry/sample/goniometer", "NXtransformations");
    setClass(tree, "/entry/instrument", "NXinstrument");
    setClass(tree, "/entry/instrument/attenuator", "NXattenuator");
    setClass(tree, "/entry/instrument/beam", "NXbeam");
    setClass(tree, "/entry/instrument/detector", "NXdetector");
    setClass(tree, "/entry/instrument/detector/detectorSpecific", "NXcollection");
    tree.setText(Entry + "definition", "NXmx");
    for (const NumberField& field : numberFields())
        if (const auto& value = (header.*field.get)())
            tree.setNumber(field.path, exactDecimal(*value), field.units);
    for (const TextField& field : textFields())
        if (const auto& value = (header.*field.get)())
            tree.setText(field.path, *value);
    if (const auto& value = header.saturation_value())
        tree.node(Detector + "saturation_value").value = std::int64_t(*value);
}

}  // namespace morvend::imglib::hdf5
