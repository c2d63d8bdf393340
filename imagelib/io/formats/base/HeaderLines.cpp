// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One table of keys serves reading, writing and bringing up to date.
#include "imagelib/io/formats/base/HeaderLines.h"

#include "imagelib/io/formats/base/HeaderWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace morvend::imglib {

namespace {

using Header = MBasicImageOptionalData<>;

constexpr Unit Metres[] = {{"m", 1},         {"cm", 1e-2},      {"mm", 1e-3}, {"um", 1e-6},
                           {"micron", 1e-6}, {"microns", 1e-6}, {"nm", 1e-9}};
constexpr Unit Seconds[] = {{"s", 1}, {"ms", 1e-3}, {"us", 1e-6}};
constexpr Unit Angstroms[] = {{"A", 1}, {"nm", 10}, {"m", 1e10}};

std::optional<float> toFloat(double value)
{
    if (std::abs(value) > double(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(value);
}

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

/// What follows the key of a line, without a colon; empty for "(nil)".
std::string_view textAfterKey(const Words& words, std::string_view line)
{
    const char* end = words[0].data() + words[0].size();
    std::string_view rest = trimmed(line.substr(static_cast<std::size_t>(end - line.data())));
    if (rest.starts_with(':') || rest.starts_with('='))
        rest = trimmed(rest.substr(1));
    return rest == "(nil)" ? std::string_view() : rest;
}

/// A key with one number.
struct NumberKey {
    std::string_view key;
    std::string_view unitText;
    Units units;
    const boost::optional<float>& (Header::*get)() const;
    void (Header::*set)(const float&);
};

constexpr NumberKey ExposureTime{"Exposure_time", " s", Seconds, &Header::count_time,
                                 &Header::set_count_time};
constexpr NumberKey ExposurePeriod{"Exposure_period", " s", Seconds, &Header::frame_time,
                                   &Header::set_frame_time};
constexpr NumberKey Threshold{"Threshold_setting", " eV", EnergyUnits, &Header::threshold_energy,
                              &Header::set_threshold_energy};
constexpr NumberKey Wavelength{"Wavelength", " A", Angstroms, &Header::wavelength,
                               &Header::set_wavelength};
constexpr NumberKey Distance{"Detector_distance", " m", Metres, &Header::detector_distance,
                             &Header::set_detector_distance};
constexpr NumberKey Flux{"Flux", "", {}, &Header::beam_flux, &Header::set_beam_flux};
constexpr NumberKey Transmission{
    "Filter_transmission", "", {}, &Header::filter_transmission, &Header::set_filter_transmission};
constexpr NumberKey StartAngle{
    "Start_angle", " deg.", {}, &Header::rotation_angle, &Header::set_rotation_angle};
constexpr NumberKey Increment{
    "Angle_increment", " deg.", {}, &Header::rotation_angle_step, &Header::set_rotation_angle_step};

template <const NumberKey& Key>
void readNumber(const Words& words, std::string_view, Header& header)
{
    const auto quantity = quantityAt(words, 1, Key.units);
    if (!quantity)
        return;
    if (const auto value = toFloat(quantity->value * quantity->factor.value_or(1)))
        (header.*Key.set)(*value);
}

template <const NumberKey& Key>
std::string writeNumber(const Header& header)
{
    const auto& value = (header.*Key.get)();
    if (!isSet(value))
        return {};
    return "# " + std::string(Key.key) + ' ' + text(*value) + std::string(Key.unitText);
}

void readEnergy(const Words& words, std::string_view, Header& header)
{
    const auto quantity = quantityAt(words, 1, EnergyUnits);
    if (!quantity || quantity->value <= 0)
        return;
    const double electronVolts = quantity->value * quantity->factor.value_or(1);
    if (const auto value = toFloat(ElectronVoltAngstrom / electronVolts))
        header.set_wavelength(*value);
}

/// "Detector: text, S/N number".
void readDetector(const Words& words, std::string_view line, Header& header)
{
    const std::string_view rest = textAfterKey(words, line);
    const std::size_t mark = rest.rfind("S/N");
    std::string_view description = trimmed(rest.substr(0, mark));
    if (mark != rest.npos && description.ends_with(','))
        description = trimmed(description.substr(0, description.size() - 1));
    if (!description.empty())
        header.set_description(std::string(description));
    if (mark == rest.npos)
        return;
    std::string_view number = trimmed(rest.substr(mark + 3));
    if (number.starts_with(':'))
        number = trimmed(number.substr(1));
    if (!number.empty() && number != "(nil)")
        header.set_detector_number(std::string(number));
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

/// Does a text begin as "2014/Jan/10 12:34", "2014-01-10T12:34:56.7" or "2014-Jan-10"?
bool beginsAsDate(std::string_view line)
{
    std::size_t i = 0;
    const auto digits = [&](std::size_t most) {
        const std::size_t begin = i;
        while (i < line.size() && i - begin < most && isDigit(line[i]))
            ++i;
        return i - begin;
    };
    if (digits(4) != 4 || i >= line.size() || (line[i] != '/' && line[i] != '-'))
        return false;
    const char separator = line[i++];
    if (digits(2) == 0) {
        const std::size_t begin = i;
        while (i < line.size() && i - begin < 3 && isLetter(line[i]))
            ++i;
        if (i - begin != 3)
            return false;
    }
    if (i >= line.size() || line[i++] != separator || digits(2) == 0)
        return false;
    if (i == line.size())
        return true;
    if (line[i] != 'T' && !isBlank(line[i]))
        return false;
    ++i;
    return digits(2) > 0 && i < line.size() && line[i] == ':';
}

void readDate(const Words&, std::string_view line, Header& header)
{
    header.set_data_collection_date(std::string(line));
}

/// "Date: text", for dates in none of the usual forms.
void readKeyedDate(const Words& words, std::string_view line, Header& header)
{
    if (const auto date = textAfterKey(words, line); !date.empty())
        header.set_data_collection_date(std::string(date));
}

std::string writeDate(const Header& header)
{
    const std::string date = oneLine(header.data_collection_date());
    if (date.empty())
        return {};
    return (beginsAsDate(date) ? "# " : "# Date: ") + date;
}

/// "Pixel_size 172e-6 m x 172e-6 m"; a single size is that of square pixels, and a unit at the end
/// alone holds for both.
void readPixelSize(const Words& words, std::string_view, Header& header)
{
    const auto x = quantityAt(words, 1, Metres);
    if (!x)
        return;
    std::size_t next = 1 + x->words;
    if (next < words.size() && sameWord(words[next], "x"))
        ++next;
    auto y = quantityAt(words, next, Metres);
    if (!y && next < words.size())
        return;
    if (!y)
        y = x;
    const double yFactor = y->factor.value_or(x->factor.value_or(1));
    const auto width = toFloat(x->value * x->factor.value_or(yFactor));
    const auto height = toFloat(y->value * yFactor);
    if (!width || !height)
        return;
    header.set_x_pixel_size(*width);
    header.set_y_pixel_size(*height);
}

std::string writePixelSize(const Header& header)
{
    if (!isSet(header.x_pixel_size()) || !isSet(header.y_pixel_size()))
        return {};
    return "# Pixel_size " + text(*header.x_pixel_size()) + " m x " + text(*header.y_pixel_size()) +
           " m";
}

/// "Silicon sensor, thickness 0.000320 m", with any material.
void readSensor(const Words& words, std::string_view, Header& header)
{
    const auto word = std::find_if(words.begin(), words.end(),
                                   [](auto each) { return sameWord(each, "thickness"); });
    const auto at = static_cast<std::size_t>(word - words.begin()) + 1;
    if (const auto quantity = quantityAt(words, at, Metres)) {
        if (const auto value = toFloat(quantity->value * quantity->factor.value_or(1)))
            header.set_sensor_thickness(*value);
    }
}

std::string writeSensor(const Header& header)
{
    if (!isSet(header.sensor_thickness()))
        return {};
    return "# Sensor, thickness " + text(*header.sensor_thickness()) + " m";
}

void readCutoff(const Words& words, std::string_view, Header& header)
{
    const auto quantity = quantityAt(words, 1, {});
    if (quantity && std::abs(quantity->value) <= double(std::numeric_limits<int>::max()))
        header.set_saturation_value(static_cast<int>(quantity->value));
}

std::string writeCutoff(const Header& header)
{
    if (!header.saturation_value())
        return {};
    return "# Count_cutoff " + std::to_string(*header.saturation_value()) + " counts";
}

/// "Beam_xy (1231.50, 1263.50) pixels". Two numbers and no length as unit, or nothing.
void readBeam(const Words&, std::string_view line, Header& header)
{
    const Words words = wordsOf(line, true);
    const auto x = quantityAt(words, 1, {});
    const auto y = quantityAt(words, 2, {});
    double third = 0;
    if (!x || !y ||
        (words.size() > 3 && (parseNumber(words[3], third) || factorOf(words[3], Metres))))
        return;
    const auto column = toFloat(x->value);
    const auto row = toFloat(y->value);
    if (!column || !row)
        return;
    header.set_beam_center_x(*column);
    header.set_beam_center_y(*row);
}

std::string writeBeam(const Header& header)
{
    if (!isSet(header.beam_center_x()) || !isSet(header.beam_center_y()))
        return {};
    return "# Beam_xy (" + text(*header.beam_center_x()) + ", " + text(*header.beam_center_y()) +
           ") pixels";
}

/// One kind of line: what it is called, and how it is read and written.
struct Kind {
    std::string_view key;  // empty: recognised by its shape
    void (*read)(const Words& words, std::string_view line, Header& header);
    std::string (*write)(const Header& header);
};

template <const NumberKey& Key>
constexpr Kind NumberKind{Key.key, readNumber<Key>, writeNumber<Key>};

/// In the order of writing. The last ones are other spellings, which are only read.
constexpr std::array Kinds{
    Kind{"Detector", readDetector, writeDetector},
    Kind{"", readDate, writeDate},
    Kind{"Pixel_size", readPixelSize, writePixelSize},
    Kind{"", readSensor, writeSensor},
    NumberKind<ExposureTime>,
    NumberKind<ExposurePeriod>,
    Kind{"Count_cutoff", readCutoff, writeCutoff},
    NumberKind<Threshold>,
    NumberKind<Wavelength>,
    NumberKind<Distance>,
    Kind{"Beam_xy", readBeam, writeBeam},
    NumberKind<Flux>,
    NumberKind<Transmission>,
    NumberKind<StartAngle>,
    NumberKind<Increment>,
    Kind{"Transmission", readNumber<Transmission>, writeNumber<Transmission>},
    Kind{"Date", readKeyedDate, writeDate},
    Kind{"Energy", readEnergy, writeNumber<Wavelength>},
};
constexpr std::size_t WrittenKinds = Kinds.size() - 3;

const Kind* kindRead(void (*read)(const Words&, std::string_view, Header&))
{
    return std::find_if(Kinds.begin(), Kinds.end(),
                        [&](const Kind& kind) { return kind.read == read; });
}

/// The place in the order of writing of the kind that writes the same fields.
std::size_t placeOf(const Kind& kind)
{
    const auto writer = std::find_if(Kinds.begin(), Kinds.end(),
                                     [&](const Kind& each) { return each.write == kind.write; });
    return static_cast<std::size_t>(writer - Kinds.begin());
}

/// The kind of a line, null when it is not known.
const Kind* kindOf(std::string_view line, const Words& words)
{
    if (words.empty())
        return nullptr;
    if (beginsAsDate(line))
        return kindRead(readDate);
    for (const Kind& kind : Kinds) {
        if (!kind.key.empty() && sameWord(words[0], kind.key))
            return &kind;
    }
    const auto contains = [&](std::string_view word) {
        return std::any_of(words.begin(), words.end(),
                           [&](auto each) { return sameWord(each, word); });
    };
    return contains("sensor") && contains("thickness") ? kindRead(readSensor) : nullptr;
}

/// Takes the next line off a text, with those that continue it; without its end.
std::string_view takeLine(std::string_view& text)
{
    std::size_t end = 0;
    for (;;) {
        end = std::min(text.find('\n', end), text.size());
        std::size_t last = end;
        while (last > 0 && (text[last - 1] == '\r' || text[last - 1] == ' '))
            --last;
        if (end == text.size() || last == 0 || text[last - 1] != '\\')
            break;
        ++end;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

/// A line as it is read: in one piece, without '#' and blanks around it.
std::string contentOf(std::string_view line)
{
    std::string joined;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find('\n'), line.size());
        std::string_view piece = trimmed(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
        while (piece.ends_with('\\'))
            piece.remove_suffix(1);
        joined.append(piece).append(" ");
    }
    std::string_view content = trimmed(joined);
    while (content.starts_with('#'))
        content = trimmed(content.substr(1));
    return std::string(content);
}

/// Reads one line. Returns its kind, null when it is not known.
const Kind* readLine(std::string_view line, Header& header)
{
    const std::string content = contentOf(line);
    const Words words = wordsOf(content);
    const Kind* kind = kindOf(content, words);
    if (kind)
        kind->read(words, content, header);
    return kind;
}

bool consistsOfHeaderLines(std::string_view text)
{
    text = trimmed(text);
    return text.starts_with('#') && !text.starts_with("###");
}

}  // namespace

void parseHeaderLines(std::string_view text, MBasicImageOptionalData<>& header)
{
    Header found;
    Header fromEnergy;
    while (!text.empty()) {
        Header one;
        const Kind* kind = readLine(takeLine(text), one);
        if (!kind)
            continue;
        Header& target = kind->read == readEnergy ? fromEnergy : found;
        if (kind->write(target).empty())
            one.override(target);
    }
    if (!found.wavelength())
        fromEnergy.override(found);
    found.override(header);
}

std::string headerLines(const MBasicImageOptionalData<>& header)
{
    std::string lines;
    for (std::size_t place = 0; place < WrittenKinds; ++place) {
        if (const std::string line = Kinds[place].write(header); !line.empty())
            lines += line + "\r\n";
    }
    return lines;
}

std::string mergedHeaderLines(const MBasicImageOptionalData<>& header)
{
    std::string_view raw = header.rawHeader() ? std::string_view(*header.rawHeader()) : "";
    if (!consistsOfHeaderLines(raw))
        return headerLines(header);
    std::array<bool, WrittenKinds> done{};
    std::string lines;
    const auto add = [&](std::string_view line) {
        if (!line.empty())
            lines.append(line).append("\r\n");
    };
    while (!raw.empty()) {
        const std::string_view line = takeLine(raw);
        std::string_view shown = trimmed(line);
        while (shown.ends_with('\\'))
            shown.remove_suffix(1);
        if (shown.empty() || shown == ";")
            continue;
        Header stated;
        const Kind* kind = readLine(line, stated);
        if (!kind) {
            add((shown.starts_with('#') ? "" : "# ") + std::string(shown));
            continue;
        }
        const std::string now = kind->write(header);
        if (!std::exchange(done[placeOf(*kind)], true))
            add(now == kind->write(stated) ? shown : now);
    }
    for (std::size_t place = 0; place < WrittenKinds; ++place) {
        if (!done[place])
            add(Kinds[place].write(header));
    }
    return lines;
}

}  // namespace morvend::imglib
