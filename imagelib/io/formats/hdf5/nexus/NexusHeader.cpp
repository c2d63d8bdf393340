// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The paths of each field, in the order in which they are tried.
#include "imagelib/io/formats/hdf5/nexus/NexusHeader.h"

#include "imagelib/io/formats/base/HeaderWords.h"
#include "imagelib/io/formats/hdf5/nexus/NexusAxes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace morvend::imglib::hdf5 {

namespace {

boost::optional<float> toFloat(std::optional<double> value)
{
    return value ? boost::optional<float>(static_cast<float>(*value)) : boost::none;
}

boost::optional<std::string> toText(const std::optional<std::string>& text)
{
    return text ? boost::optional<std::string>(*text) : boost::none;
}

/// The mean wavelength of a spectrum with weights, the wavelength of the frame otherwise.
std::optional<double> wavelengthAt(const NexusValues& values, const std::string& path,
                                   std::size_t frame)
{
    const nexus::Node* node = values.firstNumbers({path});
    if (!node)
        return std::nullopt;
    const std::vector<double> lengths = numbersOf(node->value);
    const double factor =
        unitFactor(Quantity::Wavelength, textAttribute(*node, "units")).value_or(1);
    const nexus::Node* weighting = values.firstNumbers({path + "_weights", path + "_weight"});
    const std::vector<double> weights =
        weighting ? numbersOf(weighting->value) : std::vector<double>();
    if (lengths.size() < 2 || weights.size() != lengths.size())
        return factor * *ofFrame(lengths, frame);
    double sum = 0, total = 0;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        sum += weights[i] * lengths[i];
        total += weights[i];
    }
    return total != 0 ? factor * sum / total : factor * lengths.front();
}

}  // namespace

NexusHeader::NexusHeader(nexus::MBasicNeXusTree tree, std::string entry,
                         const std::string& detector)
    : _entry(std::move(entry))
{
    _setTree(std::move(tree));
    _findDetectors(detector);
}

void NexusHeader::_setTree(nexus::MBasicNeXusTree tree)
{
    _common.set_rawHeader(tree.toText());
    _common.setNexusTree(std::move(tree));
}

void NexusHeader::_findDetectors(const std::string& only)
{
    const NexusValues values(_common.nexusTree());
    Paths detectors;
    for (const std::string& instrument : values.groups(_entry, "NXinstrument", "instrument"))
        for (const std::string& detector : values.groups(instrument, "NXdetector", "detector"))
            detectors.push_back(detector);
    const std::string usual = _entry + "/instrument/detector";
    std::erase(detectors, usual);
    detectors.insert(detectors.begin(), usual);
    if (!only.empty()) {
        std::erase_if(detectors, [&](const std::string& detector) {
            const nexus::Node* node = _common.nexusTree().find(detector);
            return detector == only || !node || textAttribute(*node, "NX_class") == "NXdetector";
        });
        detectors.insert(detectors.begin(), only);
    }
    for (const std::string& detector : detectors)
        for (const char* part : {"", "/detector_information", "/acquisition", "/detectorSpecific",
                                 "/detectorSpecific/detectorModule_000"})
            _detectors.push_back(detector + part);
}

Paths NexusHeader::_inDetectors(const Paths& names) const
{
    Paths paths;
    for (const std::string& name : names)
        for (const std::string& detector : _detectors)
            paths.push_back(detector + "/" + name);
    return paths;
}

std::size_t NexusHeader::plannedImages() const
{
    const NexusValues values(_common.nexusTree());
    const double images = values.number(_inDetectors({"nimages"})).value_or(0);
    const double triggers = values.number(_inDetectors({"ntrigger"})).value_or(1);
    const double total = images * std::max(triggers, 1.0);
    return total >= 1 && total < 1e15 ? static_cast<std::size_t>(total) : 0;
}

Paths NexusHeader::maskPaths() const { return _inDetectors({"pixel_mask"}); }

void NexusHeader::setImages(std::size_t images)
{
    _images = images;
    nexus::MBasicNeXusTree tree = _common.nexusTree();
    tree.node(_entry + "/instrument/detector/detectorSpecific/nimages").value =
        static_cast<std::int64_t>(images);
    _setTree(std::move(tree));
}

MBasicImageOptionalData<> NexusHeader::of(std::size_t frame) const
{
    MBasicImageOptionalData<> header;
    _readBeam(header, frame);
    _readDetector(header, frame);
    _readGeometry(header);
    _readTexts(header);
    const NexusValues values(_common.nexusTree());
    if (const auto rotation = NexusAxes(values).rotation(_entry, frame, _images)) {
        header.set_rotation_angle(static_cast<float>(rotation->start));
        header.set_rotation_angle_step(toFloat(rotation->step));
    }
    header.set_rawHeader(_common.rawHeader());
    // Comes last: setting the wavelength changes the tree, which should stay as in the file.
    header.shareNexusTree(_common);
    return header;
}

void NexusHeader::_readBeam(MBasicImageOptionalData<>& header, std::size_t frame) const
{
    const NexusValues values(_common.nexusTree());
    const std::string beam = _entry + "/instrument/beam/";
    const std::string sampleBeam = _entry + "/sample/beam/";
    const std::string monochromator = _entry + "/instrument/monochromator/";
    std::optional<double> wavelength;
    for (const std::string& path :
         {beam + "wavelength", monochromator + "wavelength", beam + "incident_wavelength",
          sampleBeam + "incident_wavelength"})
        if (const auto found = wavelengthAt(values, path, frame);
            found && !(wavelength.value_or(0) > 0))
            wavelength = found;
    if (!wavelength) {
        Paths energies = {beam + "incident_energy", beam + "energy", monochromator + "energy",
                          sampleBeam + "incident_energy"};
        for (const std::string& path : _inDetectors({"photon_energy"}))
            energies.push_back(path);
        if (const auto energy = values.quantity(Quantity::Energy, energies, frame);
            energy && *energy > 0)
            wavelength = ElectronVoltAngstrom / *energy;
    }
    header.set_wavelength(toFloat(wavelength));
    header.set_beam_flux(toFloat(
        values.number({beam + "total_flux", beam + "incident_beam_flux", sampleBeam + "total_flux",
                       sampleBeam + "incident_beam_flux", beam + "flux", sampleBeam + "flux"},
                      frame)));
    header.set_filter_transmission(
        toFloat(values.number({_entry + "/instrument/attenuator/attenuator_transmission"}, frame)));
}

void NexusHeader::_readDetector(MBasicImageOptionalData<>& header, std::size_t frame) const
{
    const NexusValues values(_common.nexusTree());
    if (const auto cutoff = values.number(
            _inDetectors({"saturation_value", "countrate_correction_count_cutoff"}))) {
        // Detectors without a limit write the largest number of their counters.
        constexpr double most = std::numeric_limits<int>::max();
        if (std::isfinite(*cutoff))
            header.set_saturation_value(static_cast<int>(std::clamp(*cutoff, -most, most)));
    }
    header.set_sensor_thickness(toFloat(values.smallLength(_inDetectors({"sensor_thickness"}))));
    header.set_threshold_energy(
        toFloat(values.quantity(Quantity::Energy, _inDetectors({"threshold_energy"}))));
    header.set_count_time(toFloat(
        values.quantity(Quantity::Time, _inDetectors({"count_time", "exposure_time"}), frame)));
    header.set_frame_time(
        toFloat(values.quantity(Quantity::Time, _inDetectors({"frame_time"}), frame)));
}

void NexusHeader::_readGeometry(MBasicImageOptionalData<>& header) const
{
    const NexusValues values(_common.nexusTree());
    const auto pixelX =
        values.smallLength(_inDetectors({"x_pixel_size", "module/fast_pixel_direction"}));
    const auto pixelY =
        values.smallLength(_inDetectors({"y_pixel_size", "module/slow_pixel_direction"}));
    header.set_x_pixel_size(toFloat(pixelX));
    header.set_y_pixel_size(toFloat(pixelY));

    const auto centre = [&](const char* name, std::optional<double> pixel) {
        const nexus::Node* node = values.firstNumbers(_inDetectors({name}));
        if (!node)
            return boost::optional<float>();
        const double value = numbersOf(node->value).front();
        const std::string unit = textAttribute(*node, "units");
        if (unit.empty() || unitFactor(Quantity::Pixels, unit))
            return toFloat(value);
        // A length without pixel size, or in an unknown unit, can't be turned into pixels.
        const auto length = unitFactor(Quantity::Length, unit);
        return length && pixel && *pixel > 0 ? toFloat(value * *length / *pixel) : boost::none;
    };
    header.set_beam_center_x(centre("beam_center_x", pixelX));
    header.set_beam_center_y(centre("beam_center_y", pixelY));

    auto distance =
        values.quantity(Quantity::Length, _inDetectors({"detector_distance", "distance"}));
    for (const std::string& detector : _detectors) {
        if (!distance)
            distance = NexusAxes(values).distance(detector);
        const std::string old = detector + "/geometry/translation/distances";
        if (const nexus::Node* node = values.firstNumbers({old}); node && !distance)
            if (const auto parts = numbersOf(node->value); parts.size() >= 3)
                distance = std::abs(parts[2]);
    }
    header.set_detector_distance(toFloat(distance));
}

void NexusHeader::_readTexts(MBasicImageOptionalData<>& header) const
{
    const NexusValues values(_common.nexusTree());
    Paths dates = {_entry + "/start_time"};
    for (const std::string& path : _inDetectors({"data_collection_date"}))
        dates.push_back(path);
    header.set_data_collection_date(toText(values.text(dates)));
    header.set_description(toText(values.text(_inDetectors({"description"}))));
    header.set_detector_number(
        toText(values.text(_inDetectors({"detector_number", "serial_number"}))));
}

}  // namespace morvend::imglib::hdf5
