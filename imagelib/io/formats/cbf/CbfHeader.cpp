// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Categories of the imgCIF dictionary, which measures in millimetres, degrees and seconds.
#include "imagelib/io/formats/cbf/CbfHeader.h"

#include "imagelib/io/formats/base/HeaderLines.h"
#include "imagelib/io/formats/base/HeaderWords.h"

#include <cmath>
#include <limits>

namespace morvend::imglib {

namespace {

using Header = MBasicImageOptionalData<>;

void set(Header& header, void (Header::*field)(const float&), const Cif& cif, std::string_view item,
         double factor = 1)
{
    double value = 0;
    if (cif.number(item, value))
        (header.*field)(static_cast<float>(value * factor));
}

/// The row of a loop whose item has that value; the number of rows if there is none.
std::size_t rowOf(const Cif& cif, std::string_view item, std::string_view wanted)
{
    const std::size_t rows = cif.values(item).size();
    std::size_t row = 0;
    while (row < rows && !sameWord(cif.value(item, row), wanted))
        ++row;
    return row;
}

void readPixelSizes(const Cif& cif, Header& header)
{
    double first = 0;
    double second = 0;
    if (!cif.number("_array_element_size.size", first, 0))
        return;
    if (!cif.number("_array_element_size.size", second, 1))
        second = first;
    // The rows carry the number of their dimension and may come in any order.
    double index = 0;
    if (cif.number("_array_element_size.index", index) && index == 2)
        std::swap(first, second);
    header.set_x_pixel_size(static_cast<float>(first));
    header.set_y_pixel_size(static_cast<float>(second));
}

void readBeamCentre(const Cif& cif, Header& header)
{
    double fast = 0;
    double slow = 0;
    if (!cif.number("_diffrn_detector_element.reference_center_fast", fast) ||
        !cif.number("_diffrn_detector_element.reference_center_slow", slow))
        return;
    if (!sameWord(cif.value("_diffrn_detector_element.reference_center_units"), "pixels")) {
        if (!header.x_pixel_size() || *header.x_pixel_size() <= 0 || *header.y_pixel_size() <= 0)
            return;
        fast *= 1e-3 / double(*header.x_pixel_size());
        slow *= 1e-3 / double(*header.y_pixel_size());
    }
    header.set_beam_center_x(static_cast<float>(fast));
    header.set_beam_center_y(static_cast<float>(slow));
}

/// The axis that turns during the exposure, and its position in this frame.
void readRotation(const Cif& cif, Header& header)
{
    const std::string_view axis = "_diffrn_scan_axis.axis_id";
    for (std::size_t row = 0; row < cif.values(axis).size(); ++row) {
        double step = 0;
        if (!cif.number("_diffrn_scan_axis.angle_increment", step, row) || step == 0)
            continue;
        double start = 0;
        const std::size_t frame =
            rowOf(cif, "_diffrn_scan_frame_axis.axis_id", cif.value(axis, row));
        header.set_rotation_angle_step(static_cast<float>(step));
        if (cif.number("_diffrn_scan_frame_axis.angle", start, frame) ||
            cif.number("_diffrn_scan_axis.angle_start", start, row))
            header.set_rotation_angle(static_cast<float>(start));
        return;
    }
}

/// The position of the axis that moves the detector along the beam.
void readDistance(const Cif& cif, Header& header)
{
    set(header, &Header::set_detector_distance, cif, "_diffrn_measurement.sample_detector_distance",
        1e-3);
    if (header.detector_distance())
        return;
    for (std::size_t row = 0; row < cif.values("_axis.id").size(); ++row) {
        double x = 0;
        double y = 0;
        double z = 0;
        double position = 0;
        if (!sameWord(cif.value("_axis.type", row), "translation") ||
            !sameWord(cif.value("_axis.equipment", row), "detector") ||
            !cif.number("_axis.vector[1]", x, row) || !cif.number("_axis.vector[2]", y, row) ||
            !cif.number("_axis.vector[3]", z, row) || x != 0 || y != 0 || z == 0)
            continue;
        const std::string_view id = cif.value("_axis.id", row);
        const std::size_t frame = rowOf(cif, "_diffrn_scan_frame_axis.axis_id", id);
        const std::size_t scan = rowOf(cif, "_diffrn_scan_axis.axis_id", id);
        if (cif.number("_diffrn_scan_frame_axis.displacement", position, frame) ||
            cif.number("_diffrn_scan_axis.displacement_start", position, scan)) {
            double offset = 0;
            cif.number("_axis.offset[3]", offset, row);
            header.set_detector_distance(
                static_cast<float>(std::abs(position * z + offset) * 1e-3));
            return;
        }
    }
}

void readCategories(const Cif& cif, Header& header)
{
    set(header, &Header::set_wavelength, cif, "_diffrn_radiation_wavelength.wavelength");
    set(header, &Header::set_count_time, cif, "_diffrn_scan_frame.integration_time");
    set(header, &Header::set_frame_time, cif, "_diffrn_scan_frame.integration_period");
    double overload = 0;
    if (cif.number("_array_intensities.overload", overload) &&
        std::abs(overload) <= double(std::numeric_limits<int>::max()))
        header.set_saturation_value(static_cast<int>(overload));
    if (const auto date = cif.value("_diffrn_scan_frame.date"); !date.empty())
        header.set_data_collection_date(std::string(date));
    for (const char* item : {"_diffrn_detector.type", "_diffrn_detector.detector"}) {
        if (const auto type = cif.value(item); !type.empty() && !header.description())
            header.set_description(std::string(type));
    }
    readPixelSizes(cif, header);
    readBeamCentre(cif, header);
    readDistance(cif, header);
    readRotation(cif, header);
}

}  // namespace

MBasicImageOptionalData<> cbfHeader(std::string_view text, const Cif& cif)
{
    Header header;
    readCategories(cif, header);
    const std::string_view lines = headerContents(text);
    parseHeaderLines(lines, header);
    header.set_rawHeader(std::string(trimmed(lines).empty() ? trimmed(text) : trimmed(lines)));
    return header;
}

}  // namespace morvend::imglib
