// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From lines to fields.
#include "imagelib/io/formats/base/HeaderValues.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace morvend::imglib {

namespace {

using Header = MBasicImageOptionalData<>;

// A NUL ends a line too: in TIFF files it may be between texts.
constexpr std::string_view LineEnds("\n\0", 2);

const HeaderKey& keyNamed(std::string_view name)
{
    return *std::ranges::find(headerKeys(), name, &HeaderKey::name);
}

std::optional<float> toFloat(double value)
{
    if (std::abs(value) > double(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(value);
}

/// A serial number and the text before it.
struct DetectorText {
    std::string_view description;
    std::string_view number;
};
DetectorText splitDetector(std::string_view text)
{
    std::size_t mark = text.rfind("S/N");
    std::size_t length = 3;
    for (const std::string_view other : {" SN:", " SN "}) {
        if (mark == text.npos) {
            mark = text.rfind(other);
            length = other.size();
        }
    }
    if (mark == text.npos)
        return {trimmed(text), {}};
    std::string_view number = trimmed(text.substr(mark + length));
    if (number.starts_with(':'))
        number = trimmed(number.substr(1));
    std::string_view description = trimmed(text.substr(0, mark));
    if (description.ends_with(','))
        description = trimmed(description.substr(0, description.size() - 1));
    return {description, number == "(nil)" ? std::string_view() : number};
}

/// True if a text begins with words and a colon, like the rest of a longer key.
bool goesOnAsKey(std::string_view text)
{
    const std::string_view words = trimmed(text.substr(0, text.find_first_of(":=")));
    return words.size() < text.size() && !words.empty() && isLetter(words.back()) &&
           !words.ends_with("S/N") && !words.ends_with("SN");
}

/// What follows a key in its line; nothing where the key is only the start of another one.
std::string_view textAfter(std::string_view line, std::string_view lastWord)
{
    const char* end = lastWord.data() + lastWord.size();
    std::string_view rest = trimmed(line.substr(static_cast<std::size_t>(end - line.data())));
    if (rest.starts_with(')'))
        rest = trimmed(rest.substr(1));
    if (rest.starts_with(':') || rest.starts_with('='))
        rest = trimmed(rest.substr(1));
    else if (goesOnAsKey(rest))
        return {};
    return rest == "(nil)" ? std::string_view() : rest;
}

/// True for a time with its unit, as in "Time: 0.5 s", which is not a date.
bool isDuration(std::string_view text)
{
    const Words words = wordsOf(text);
    const auto time = quantityAt(words, 0, keyNamed("exposuretime").units);
    return time && time->factor && time->words == words.size();
}

bool isBeam(const HeaderKey& key)
{
    return key.item == HeaderItem::BeamX || key.item == HeaderItem::BeamY;
}

/// A number with its unit, for a beam centre possibly a unit of length.
struct Measured {
    double number = 0;
    std::optional<double> factor;
    bool length = false;
    std::size_t words = 1;

    void takeUnit(const Measured& other)
    {
        factor = other.factor;
        length = other.length;
    }
};

std::optional<Measured> measured(const HeaderKey& key, const Words& words, std::size_t at)
{
    auto quantity = quantityAt(words, at, key.units);
    const bool length = !quantity && isBeam(key);
    if (length)
        quantity = quantityAt(words, at, Metres);
    if (!quantity)
        return std::nullopt;
    return Measured{quantity->value, quantity->factor, length, quantity->words};
}

/// The unit that a key ends with, as in "size (um): 172".
std::optional<Measured> unitOfKey(const HeaderKey& key, const Words& words, std::size_t at)
{
    if (at >= words.size())
        return std::nullopt;
    if (const auto factor = factorOf(words[at], key.units))
        return Measured{0, factor};
    const auto factor = isBeam(key) ? factorOf(words[at], Metres) : std::nullopt;
    return factor ? std::optional(Measured{0, factor, true}) : std::nullopt;
}

/// The value in the unit of the field, if known.
std::optional<double> inFieldUnit(const HeaderKey& key, const Measured& measured)
{
    if (measured.factor)
        return measured.number * *measured.factor;
    if (!key.takesBare(measured.number))
        return std::nullopt;
    constexpr double Metre = 1e10;
    const bool metres = key.item == HeaderItem::Wavelength && key.shape == HeaderKey::Number &&
                        std::abs(measured.number) < 1e-6;
    return measured.number * (metres ? Metre : 1);
}

}  // namespace

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

std::string_view takeHeaderLine(std::string_view& text)
{
    std::size_t end = 0;
    for (;;) {
        end = std::min(text.find_first_of(LineEnds, end), text.size());
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

std::string contentOfHeaderLine(std::string_view line)
{
    std::string joined;
    while (!line.empty()) {
        const std::size_t end = std::min(line.find_first_of(LineEnds), line.size());
        std::string_view piece = trimmed(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
        while (piece.ends_with('\\'))
            piece.remove_suffix(1);
        while (piece.starts_with('#'))
            piece.remove_prefix(1);
        joined.append(piece).append(" ");
    }
    std::string_view content = trimmed(joined);
    while (content.starts_with('#'))
        content = trimmed(content.substr(1));
    return std::string(content);
}

void setDetector(std::string_view text, Header& header)
{
    const auto [description, number] = splitDetector(text);
    if (!description.empty())
        header.set_description(std::string(description));
    if (!number.empty())
        header.set_detector_number(std::string(number));
}

void HeaderValues::addLines(std::string_view text, bool within)
{
    _within = within;
    while (!text.empty()) {
        std::string_view line = takeHeaderLine(text);
        if (within)
            line.remove_prefix(std::min(line.find('#'), line.size()));
        if (!line.empty())
            addLine(contentOfHeaderLine(line));
    }
    _within = false;
}

const HeaderKey* HeaderValues::addLine(std::string_view line)
{
    const HeaderKey* first = nullptr;
    const bool within = _within;
    for (std::size_t at = 0; at < line.size();) {
        const std::size_t end = std::min(line.find('#', at), line.size());
        const std::string_view piece = trimmed(line.substr(at, end - at));
        const HeaderKey* key = piece.empty() ? nullptr : _addPiece(trimmed(line.substr(at)), piece);
        if (!_within || within)
            first = first ? first : key;
        if (key && key->shape >= HeaderKey::Text)
            break;  // a text extends to the end of the line
        at = end + 1;
        _within = true;
    }
    _within = within;
    return first;
}

const HeaderKey* HeaderValues::_addPiece(std::string_view line, std::string_view piece)
{
    if (beginsAsDate(piece)) {
        const HeaderKey& date = keyNamed("date");
        _keep(date, HeaderItem::Date, {.text = std::string(line)});
        return &date;
    }
    const Words words = wordsOf(piece);
    const KeyMatch match = matchKey(words);
    if (!match.key) {
        const auto word = std::ranges::find_if(
            words, [](std::string_view each) { return sameWord(each, "thickness"); });
        const bool sensor = std::ranges::any_of(
            words, [](std::string_view each) { return sameWord(each, "sensor"); });
        if (word == words.end() || !sensor)
            return nullptr;
        const HeaderKey& thickness = keyNamed("sensorthickness");
        _addNumbers(thickness, words, static_cast<std::size_t>(word - words.begin()) + 1);
        return &thickness;
    }
    if (match.key->shape >= HeaderKey::Text)
        _addText(*match.key, textAfter(line, words[match.words - 1]));
    else if (match.key->item == HeaderItem::BeamX || match.key->item == HeaderItem::BeamY)
        _addNumbers(*match.key, wordsOf(piece, true), match.words);
    else
        _addNumbers(*match.key, words, match.words);
    return match.key;
}

void HeaderValues::add(std::string_view name, std::string_view value)
{
    Words words = wordsOf(name);
    const KeyMatch match = matchKey(words);
    const bool whole =
        match.key && (match.words == words.size() ||
                      (match.words + 1 == words.size() && match.key->shape < HeaderKey::Text &&
                       unitOfKey(*match.key, words, match.words)));
    if (!whole) {
        if (value.find('#') != value.npos)
            addLines(value, true);
    } else if (match.key->shape >= HeaderKey::Text) {
        _addText(*match.key, trimmed(value));
    } else {
        const Words more = wordsOf(value, isBeam(*match.key));
        words.insert(words.end(), more.begin(), more.end());
        _addNumbers(*match.key, words, match.words);
    }
}

void HeaderValues::_addNumbers(const HeaderKey& key, const Words& words, std::size_t at)
{
    const auto unit = unitOfKey(key, words, at);
    if (unit)
        ++at;
    auto first = measured(key, words, at);
    if (!first)
        return;
    at += first->words;
    if (unit && !first->factor)
        first->takeUnit(*unit);
    if (key.shape != HeaderKey::Pair) {
        auto value = inFieldUnit(key, *first);
        if (!value || (key.shape == HeaderKey::Energy && *value <= 0))
            return;
        if (key.shape == HeaderKey::Energy)
            value = ElectronVoltAngstrom / *value;
        _keep(key, key.item, {.number = *value, .length = first->length, .text = {}});
        return;
    }
    if (at < words.size() && (sameWord(words[at], "x") || words[at] == Times))
        ++at;
    auto second = measured(key, words, at);
    double third = 0;
    if (!second && (at < words.size() || isBeam(key)))
        return;
    if (second && at + second->words < words.size() &&
        parseNumber(words[at + second->words], third))
        return;
    if (!second)
        second = first;
    // A single unit at the end applies to both.
    if (!first->factor)
        first->takeUnit(*second);
    if (!second->factor)
        second->takeUnit(*first);
    const auto x = inFieldUnit(key, *first);
    const auto y = inFieldUnit(key, *second);
    if (!x || !y || !toFloat(*x) || !toFloat(*y))
        return;
    _keep(key, key.item, {.number = *x, .length = first->length, .text = {}});
    _keep(key, HeaderItem(std::size_t(key.item) + 1),
          {.number = *y, .length = second->length, .text = {}});
}

void HeaderValues::_addText(const HeaderKey& key, std::string_view text)
{
    if (key.shape == HeaderKey::Description) {
        const auto [description, number] = splitDetector(text);
        if (!description.empty())
            _keep(key, HeaderItem::Detector, {.text = std::string(description)});
        if (!number.empty())
            _keep(key, HeaderItem::DetectorNumber, {.text = std::string(number)});
    } else if (key.item == HeaderItem::Date && isDuration(text)) {
        return;
    } else if (!text.empty() && text != "(nil)") {
        _keep(key, key.item, {.text = std::string(text)});
    }
}

void HeaderValues::_keep(const HeaderKey& key, HeaderItem item, Value value)
{
    if (!toFloat(value.number))
        return;
    value.rank = static_cast<std::size_t>(&key - headerKeys().data());
    if (_within)
        value.rank += headerKeys().size();
    auto& kept = _values[std::size_t(item)];
    if (!kept || value.rank < kept->rank)
        kept = std::move(value);
}

void HeaderValues::fill(Header& header) const
{
    using Setter = void (Header::*)(const float&);
    constexpr std::pair<HeaderItem, Setter> Numbers[] = {
        {HeaderItem::PixelSizeX, &Header::set_x_pixel_size},
        {HeaderItem::PixelSizeY, &Header::set_y_pixel_size},
        {HeaderItem::SensorThickness, &Header::set_sensor_thickness},
        {HeaderItem::ExposureTime, &Header::set_count_time},
        {HeaderItem::ExposurePeriod, &Header::set_frame_time},
        {HeaderItem::Threshold, &Header::set_threshold_energy},
        {HeaderItem::Wavelength, &Header::set_wavelength},
        {HeaderItem::Distance, &Header::set_detector_distance},
        {HeaderItem::Flux, &Header::set_beam_flux},
        {HeaderItem::Transmission, &Header::set_filter_transmission},
        {HeaderItem::StartAngle, &Header::set_rotation_angle},
        {HeaderItem::AngleIncrement, &Header::set_rotation_angle_step},
    };
    for (const auto& [item, set] : Numbers)
        if (const auto& value = _values[std::size_t(item)])
            (header.*set)(static_cast<float>(value->number));
    using TextSetter = void (Header::*)(const std::string&);
    constexpr std::pair<HeaderItem, TextSetter> Texts[] = {
        {HeaderItem::Detector, &Header::set_description},
        {HeaderItem::DetectorNumber, &Header::set_detector_number},
        {HeaderItem::Date, &Header::set_data_collection_date},
    };
    for (const auto& [item, set] : Texts)
        if (const auto& value = _values[std::size_t(item)])
            (header.*set)(value->text);
    const auto& cutoff = _values[std::size_t(HeaderItem::CountCutoff)];
    if (cutoff && std::abs(cutoff->number) <= double(std::numeric_limits<int>::max()))
        header.set_saturation_value(static_cast<int>(cutoff->number));
    _setBeamCentre(header);
}

void HeaderValues::_setBeamCentre(Header& header) const
{
    const auto pixels = [&](HeaderItem item,
                            const boost::optional<float>& pixelSize) -> boost::optional<float> {
        const auto& value = _values[std::size_t(item)];
        if (!value || (value->length && (!pixelSize || !(*pixelSize > 0))))
            return boost::none;
        const auto result =
            toFloat(value->length ? value->number / double(*pixelSize) : value->number);
        return result ? boost::optional<float>(*result) : boost::none;
    };
    if (const auto x = pixels(HeaderItem::BeamX, header.x_pixel_size()))
        header.set_beam_center_x(*x);
    if (const auto y = pixels(HeaderItem::BeamY, header.y_pixel_size()))
        header.set_beam_center_y(*y);
}

}  // namespace morvend::imglib
