// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Text and JSON about an image.
#include "bin/image/Info.h"

#include "bin/image/ImageSummary.h"
#include "bin/image/JsonText.h"

#include <iomanip>
#include <map>
#include <ostream>
#include <string_view>
#include <utility>

namespace tarvik::tool {

using morvend::imglib::MImage;

namespace {

/// Text for a terminal: without control characters from the file.
std::string printable(std::string text)
{
    for (char& character : text)
        if (static_cast<unsigned char>(character) < ' ' && character != '\n' && character != '\t')
            character = character == '\r' ? ' ' : '?';
    return text;
}

std::string textOf(const std::string& value) { return printable(value); }
std::string textOf(float value) { return ImageNumber(value).text(); }
std::string textOf(int value) { return ImageNumber(value).text(); }

/// Calls visit(name, value) for each field that is present, is one value and is not the file's
/// header text.
template <class Visitor>
void forEachValue(const MImage& image, Visitor&& visit)
{
    image.optionalData().forEachField([&](std::string_view name, const auto& value) {
        if constexpr (!std::is_same_v<std::decay_t<decltype(value)>, boost::optional<MImage>>) {
            if (value && name != "rawHeader")
                visit(std::string(name), *value);
        }
    });
}

std::string_view unitOf(std::string_view field)
{
    static const std::map<std::string_view, std::string_view> units{
        {"beam_center_x", "pixels"},
        {"beam_center_y", "pixels"},
        {"detector_distance", "m"},
        {"wavelength", "A"},
        {"x_pixel_size", "m"},
        {"y_pixel_size", "m"},
        {"rotation_angle", "degrees"},
        {"rotation_angle_step", "degrees"},
        {"saturation_value", "counts"},
        {"sensor_thickness", "m"},
        {"threshold_energy", "eV"},
        {"count_time", "s"},
        {"frame_time", "s"},
        {"beam_flux", "1/s"}};
    const auto unit = units.find(field);
    return unit == units.end() ? std::string_view() : unit->second;
}

std::string typeName(const MImage& image) { return morvend::datatypes::typeStr(image.type()); }

void writeLine(std::ostream& out, std::string_view name, const std::string& value)
{
    out << std::left << std::setw(22) << name << value << '\n';
}

void writeValues(const MImage& image, std::ostream& out)
{
    forEachValue(image, [&](const std::string& name, const auto& value) {
        const std::string_view unit = unitOf(name);
        writeLine(out, name, textOf(value) + (unit.empty() ? "" : " " + std::string(unit)));
    });
}

}  // namespace

void Info::writeHeader(const MImage& image, std::ostream& out)
{
    if (!image.optionalData().rawHeader())
        return writeValues(image, out);
    std::string text = *image.optionalData().rawHeader();
    std::erase(text, '\r');
    out << printable(std::move(text)) << '\n';
}

Info::Info(Arguments arguments)
    : _arguments(std::move(arguments))
    , _chosen(_arguments)
{
    const MImage& image = _chosen.image;
    for (const auto& [x, y] : _arguments.pixels)
        if (x < 0 || y < 0 || x >= image.width() || y >= image.height())
            throw morvend::MOutOfRangeException(
                "Pixel " + std::to_string(x) + "," + std::to_string(y) +
                " lies outside of the image of " + std::to_string(image.width()) + " x " +
                std::to_string(image.height()) + " pixels: " + _arguments.file);
}

void Info::writeText(std::ostream& out) const
{
    const MImage& image = std::as_const(_chosen.image);
    const ImageSummary summary = ImageSummary::of(image);
    const auto line = [&out](std::string_view name, const std::string& value) {
        writeLine(out, name, value);
    };
    line("File", _chosen.series.pathToImage(_chosen.number));
    line("Format", _chosen.series.formatName());
    line("Image", std::to_string(_chosen.number) + " of " + std::to_string(_chosen.series.first()) +
                      " to " + std::to_string(_chosen.series.last()));
    line("Size", std::to_string(image.width()) + " x " + std::to_string(image.height()) +
                     " pixels, " + typeName(image) + " of " + std::to_string(image.typeBits()) +
                     " bits");
    line("Minimum", summary.minimum.text());
    line("Maximum", summary.maximum.text());
    line("Sum", summary.sum.text());
    if (const auto& mask = image.optionalData().pixel_mask())
        line("Masked pixels", std::to_string(mask->empty() ? 0 : countNonZero(*mask)));
    for (const auto& [x, y] : _arguments.pixels)
        line("Pixel " + std::to_string(x) + "," + std::to_string(y),
             pixelValue(image, x, y).text());
    writeValues(image, out);
    if (const auto& raw = image.optionalData().rawHeader(); raw && _arguments.rawHeader)
        out << '\n' << printable(*raw) << '\n';
}

void Info::writeJson(std::ostream& out) const
{
    const MImage& image = std::as_const(_chosen.image);
    const ImageSummary summary = ImageSummary::of(image);
    JsonObject object;
    object.add("path", quoted(_arguments.file));
    object.add("frame_path", quoted(_chosen.series.pathToImage(_chosen.number)));
    object.add("format", quoted(_chosen.series.formatName()));
    object.add("first", jsonOf(_chosen.series.first()));
    object.add("last", jsonOf(_chosen.series.last()));
    object.add("frame", jsonOf(_chosen.number));
    object.add("width", jsonOf(image.width()));
    object.add("height", jsonOf(image.height()));
    object.add("type", quoted(typeName(image)));
    object.add("bits", std::to_string(image.typeBits()));
    object.add("minimum", summary.minimum.json());
    object.add("maximum", summary.maximum.json());
    object.add("sum", summary.sum.json());
    object.add("sha256", quoted(pixelDigest(image)));
    const auto& mask = image.optionalData().pixel_mask();
    object.add("mask_nonzero",
               mask && !mask->empty() ? std::to_string(countNonZero(*mask)) : "null");
    JsonObject header;
    forEachValue(image, [&](const std::string& name, const auto& value) {
        header.add(name, jsonOf(value));
    });
    object.add("header", header.text());
    if (!_arguments.pixels.empty()) {
        std::string values;
        for (const auto& [x, y] : _arguments.pixels)
            values += (values.empty() ? "" : ", ") + pixelValue(image, x, y).json();
        object.add("pixels", '[' + values + ']');
    }
    if (_arguments.rawHeader)
        object.add("rawHeader", quoted(image.optionalData().rawHeader().value_or("")));
    out << object.text() << '\n';
}

}  // namespace tarvik::tool
