// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Writes header lines and updates them.
#include "imagelib/io/formats/base/HeaderLines.h"

#include "imagelib/io/formats/base/HeaderValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace morvend::imglib {

namespace {

using Header = MBasicImageOptionalData<>;

std::string text(float value)
{
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return std::string(digits.data(), end);
}

bool isSet(const boost::optional<float>& value) { return value && std::isfinite(*value); }

/// A text that stays on its line.
std::string oneLine(const boost::optional<std::string>& value)
{
    std::string result(trimmed(value ? std::string_view(*value) : ""));
    std::replace_if(result.begin(), result.end(), isBlank, ' ');
    // A backslash at the end would join the next line to this one.
    while (!result.empty() && (result.back() == '\\' || result.back() == ' '))
        result.pop_back();
    return result;
}

template <const boost::optional<float>& (Header::*Get)() const>
std::string writeNumber(const Header& header, std::string_view key, std::string_view unit)
{
    const auto& value = (header.*Get)();
    if (!isSet(value))
        return {};
    return "# " + std::string(key) + ' ' + text(*value) + std::string(unit);
}

std::string writeDetector(const Header& header)
{
    const std::string description = oneLine(header.description());
    const std::string number = oneLine(header.detector_number());
    if (description.empty() && number.empty())
        return {};
    std::string line = "# Detector: " + description;
    if (!number.empty())
        line += (description.empty() ? "S/N " : ", S/N ") + number;
    return line;
}

std::string writeDate(const Header& header)
{
    const std::string date = oneLine(header.data_collection_date());
    if (date.empty())
        return {};
    return (beginsAsDate(date) ? "# " : "# Date: ") + date;
}

std::string writePixelSize(const Header& header)
{
    if (!isSet(header.x_pixel_size()) || !isSet(header.y_pixel_size()))
        return {};
    return "# Pixel_size " + text(*header.x_pixel_size()) + " m x " + text(*header.y_pixel_size()) +
           " m";
}

std::string writeSensor(const Header& header)
{
    if (!isSet(header.sensor_thickness()))
        return {};
    return "# Sensor, thickness " + text(*header.sensor_thickness()) + " m";
}

std::string writeCutoff(const Header& header)
{
    if (!header.saturation_value())
        return {};
    return "# Count_cutoff " + std::to_string(*header.saturation_value()) + " counts";
}

std::string writeBeam(const Header& header)
{
    if (!isSet(header.beam_center_x()) || !isSet(header.beam_center_y()))
        return {};
    return "# Beam_xy (" + text(*header.beam_center_x()) + ", " + text(*header.beam_center_y()) +
           ") pixels";
}

/// One line as it is written, by the first item that it states.
struct Line {
    HeaderItem item;
    std::string (*write)(const Header& header);
};

constexpr std::array Lines{
    Line{HeaderItem::Detector, writeDetector},
    Line{HeaderItem::Date, writeDate},
    Line{HeaderItem::PixelSizeX, writePixelSize},
    Line{HeaderItem::SensorThickness, writeSensor},
    Line{
        HeaderItem::ExposureTime,
        [](const Header& h) { return writeNumber<&Header::count_time>(h, "Exposure_time", " s"); }},
    Line{HeaderItem::ExposurePeriod,
         [](const Header& h) {
             return writeNumber<&Header::frame_time>(h, "Exposure_period", " s");
         }},
    Line{HeaderItem::CountCutoff, writeCutoff},
    Line{HeaderItem::Threshold,
         [](const Header& h) {
             return writeNumber<&Header::threshold_energy>(h, "Threshold_setting", " eV");
         }},
    Line{HeaderItem::Wavelength,
         [](const Header& h) { return writeNumber<&Header::wavelength>(h, "Wavelength", " A"); }},
    Line{HeaderItem::Distance,
         [](const Header& h) {
             return writeNumber<&Header::detector_distance>(h, "Detector_distance", " m");
         }},
    Line{HeaderItem::BeamX, writeBeam},
    Line{HeaderItem::Flux,
         [](const Header& h) { return writeNumber<&Header::beam_flux>(h, "Flux", ""); }},
    Line{HeaderItem::Transmission,
         [](const Header& h) {
             return writeNumber<&Header::filter_transmission>(h, "Filter_transmission", "");
         }},
    Line{HeaderItem::StartAngle,
         [](const Header& h) {
             return writeNumber<&Header::rotation_angle>(h, "Start_angle", " deg.");
         }},
    Line{HeaderItem::AngleIncrement,
         [](const Header& h) {
             return writeNumber<&Header::rotation_angle_step>(h, "Angle_increment", " deg.");
         }},
};

/// The place in the order of writing of the line that states an item.
std::size_t placeOf(HeaderItem item)
{
    // Items that share a line follow each other.
    const auto after = std::ranges::upper_bound(Lines, item, {}, &Line::item);
    return static_cast<std::size_t>(after - Lines.begin()) - 1;
}

bool consistsOfHeaderLines(std::string_view text)
{
    text = trimmed(text);
    return text.starts_with('#') && !text.starts_with("###");
}

/// A text of header lines while it is updated.
class Merger {
public:
    Merger(std::string_view raw, const Header& header)
        : _header(header)
    {
        parseHeaderLines(raw, _read);
        while (!raw.empty())
            _take(takeHeaderLine(raw));
        for (std::size_t place = 0; place < Lines.size(); ++place)
            if (!_done[place] && !_told[place])
                _add(Lines[place].write(header));
    }

    std::string text() && { return std::move(_text); }

private:
    void _take(std::string_view line)
    {
        std::string_view shown = trimmed(line);
        while (shown.ends_with('\\'))
            shown.remove_suffix(1);
        if (shown.empty() || shown == ";")
            return;
        HeaderValues values;
        const HeaderKey* key = values.addLine(contentOfHeaderLine(line));
        if (!key) {
            _add((shown.starts_with('#') ? "" : "# ") + std::string(shown));
            return;
        }
        const std::size_t place = placeOf(key->item);
        const auto write = Lines[place].write;
        const std::string now = write(_header);
        if (!key->own) {
            // Another program's spelling stays while its content does.
            if (_unchanged(place)) {
                _told[place] = true;
                _add(shown);
            }
            return;
        }
        Header stated;
        values.fill(stated);
        if (!std::exchange(_done[place], true))
            _add(now == write(stated) ? shown : now);
    }

    /// True if a line states something, and the same as before.
    bool _unchanged(std::size_t place) const
    {
        // Two fields in one line, which is missing while one of them is.
        if (Lines[place].item == HeaderItem::PixelSizeX)
            return _header.x_pixel_size() == _read.x_pixel_size() &&
                   _header.y_pixel_size() == _read.y_pixel_size();
        if (Lines[place].item == HeaderItem::BeamX)
            return _header.beam_center_x() == _read.beam_center_x() &&
                   _header.beam_center_y() == _read.beam_center_y();
        const std::string now = Lines[place].write(_header);
        return !now.empty() && now == Lines[place].write(_read);
    }

    void _add(std::string_view line)
    {
        if (!line.empty())
            _text.append(line).append("\r\n");
    }

    const Header& _header;
    Header _read;  // what the text stated before
    std::array<bool, Lines.size()> _done{};
    std::array<bool, Lines.size()> _told{};
    std::string _text;
};

}  // namespace

void parseHeaderLines(std::string_view text, MBasicImageOptionalData<>& header)
{
    HeaderValues values;
    values.addLines(text);
    values.fill(header);
}

std::string headerLines(const MBasicImageOptionalData<>& header)
{
    std::string lines;
    for (const Line& line : Lines) {
        if (const std::string text = line.write(header); !text.empty())
            lines += text + "\r\n";
    }
    return lines;
}

std::string mergedHeaderLines(const MBasicImageOptionalData<>& header)
{
    const std::string_view raw = header.rawHeader() ? std::string_view(*header.rawHeader()) : "";
    return consistsOfHeaderLines(raw) ? Merger(raw, header).text() : headerLines(header);
}

}  // namespace morvend::imglib
