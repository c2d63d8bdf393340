// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The table of units; values of a metadata tree as numbers and texts.
#include "imagelib/io/formats/hdf5/nexus/NexusValues.h"

#include <algorithm>
#include <cctype>
#include <numbers>
#include <sstream>

namespace morvend::imglib::hdf5 {

using nexus::Node;
using nexus::Value;

namespace {

struct Unit {
    Quantity quantity;
    const char* name;
    double factor;
};

constexpr double Joule = 1 / 1.602176634e-19;

constexpr Unit Units[] = {
    {Quantity::Length, "m", 1},
    {Quantity::Length, "meter", 1},
    {Quantity::Length, "metre", 1},
    {Quantity::Length, "cm", 1e-2},
    {Quantity::Length, "centimeter", 1e-2},
    {Quantity::Length, "centimetre", 1e-2},
    {Quantity::Length, "mm", 1e-3},
    {Quantity::Length, "millimeter", 1e-3},
    {Quantity::Length, "millimetre", 1e-3},
    {Quantity::Length, "um", 1e-6},
    {Quantity::Length, "\u00b5m", 1e-6},
    {Quantity::Length, "\u03bcm", 1e-6},
    {Quantity::Length, "micron", 1e-6},
    {Quantity::Length, "micrometer", 1e-6},
    {Quantity::Length, "micrometre", 1e-6},
    {Quantity::Length, "nm", 1e-9},
    {Quantity::Length, "nanometer", 1e-9},
    {Quantity::Length, "nanometre", 1e-9},
    {Quantity::Length, "angstrom", 1e-10},
    {Quantity::Length, "a", 1e-10},
    {Quantity::Length, "pm", 1e-12},
    {Quantity::Energy, "ev", 1},
    {Quantity::Energy, "electronvolt", 1},
    {Quantity::Energy, "kev", 1e3},
    {Quantity::Energy, "mev", 1e6},
    {Quantity::Energy, "j", Joule},
    {Quantity::Energy, "joule", Joule},
    {Quantity::Time, "s", 1},
    {Quantity::Time, "sec", 1},
    {Quantity::Time, "second", 1},
    {Quantity::Time, "ms", 1e-3},
    {Quantity::Time, "millisecond", 1e-3},
    {Quantity::Time, "us", 1e-6},
    {Quantity::Time, "\u00b5s", 1e-6},
    {Quantity::Time, "\u03bcs", 1e-6},
    {Quantity::Time, "microsecond", 1e-6},
    {Quantity::Time, "ns", 1e-9},
    {Quantity::Time, "nanosecond", 1e-9},
    {Quantity::Time, "min", 60},
    {Quantity::Time, "minute", 60},
    {Quantity::Angle, "deg", 1},
    {Quantity::Angle, "degree", 1},
    {Quantity::Angle, "\u00b0", 1},
    {Quantity::Angle, "rad", 180 / std::numbers::pi},
    {Quantity::Angle, "radian", 180 / std::numbers::pi},
    {Quantity::Angle, "mrad", 0.18 / std::numbers::pi},
    {Quantity::Pixels, "pixel", 1},
    {Quantity::Pixels, "pix", 1},
    {Quantity::Pixels, "px", 1},
    {Quantity::Pixels, "channel", 1},
    {Quantity::Pixels, "1", 1},
    {Quantity::Pixels, "none", 1},
    {Quantity::Pixels, "dimensionless", 1},
    {Quantity::Pixels, "nx_dimensionless", 1},
};

}  // namespace

std::optional<double> unitFactor(Quantity quantity, const std::string& unit)
{
    std::string name = unit;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const bool wavelength = quantity == Quantity::Wavelength;
    for (const Unit& each : Units)
        if (each.quantity == (wavelength ? Quantity::Length : quantity) &&
            (name == each.name || name == std::string(each.name) + "s" ||
             name == std::string(each.name) + "."))
            return wavelength ? each.factor * 1e10 : each.factor;
    return std::nullopt;
}

double factorByMagnitude(double length) { return length >= 1 ? 1e-6 : length >= 0.01 ? 1e-3 : 1; }

std::vector<double> numbersOf(const Value& value)
{
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return {static_cast<double>(*integer)};
    if (const auto* number = std::get_if<double>(&value))
        return {*number};
    if (const auto* integers = std::get_if<std::vector<std::int64_t>>(&value))
        return {integers->begin(), integers->end()};
    if (const auto* numbers = std::get_if<std::vector<double>>(&value))
        return *numbers;
    return {};
}

std::string textOf(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* texts = std::get_if<std::vector<std::string>>(&value))
        return texts->empty() ? std::string() : texts->front();
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return std::to_string(*integer);
    const std::vector<double> numbers = numbersOf(value);
    if (numbers.empty())
        return {};
    std::ostringstream out;
    out << numbers.front();
    return out.str();
}

std::string textAttribute(const Node& node, const std::string& name)
{
    const auto found = node.attributes.find(name);
    return found == node.attributes.end() ? std::string() : textOf(found->second);
}

std::vector<double> numbersAttribute(const Node& node, const std::string& name)
{
    const auto found = node.attributes.find(name);
    return found == node.attributes.end() ? std::vector<double>() : numbersOf(found->second);
}

std::optional<double> ofFrame(const std::vector<double>& values, std::size_t frame)
{
    if (values.empty())
        return std::nullopt;
    return values[frame < values.size() ? frame : 0];
}

const Node* NexusValues::firstNumbers(const Paths& paths) const
{
    for (const std::string& path : paths)
        if (const Node* node = _tree.find(path); node && !numbersOf(node->value).empty())
            return node;
    return nullptr;
}

std::optional<double> NexusValues::number(const Paths& paths, std::size_t frame) const
{
    const Node* node = firstNumbers(paths);
    return node ? ofFrame(numbersOf(node->value), frame) : std::nullopt;
}

std::optional<double> NexusValues::quantity(Quantity quantity, const Paths& paths,
                                            std::size_t frame) const
{
    const Node* node = firstNumbers(paths);
    if (!node)
        return std::nullopt;
    const double factor = unitFactor(quantity, textAttribute(*node, "units")).value_or(1);
    return factor * *ofFrame(numbersOf(node->value), frame);
}

std::optional<double> NexusValues::smallLength(const Paths& paths) const
{
    const Node* node = firstNumbers(paths);
    if (!node)
        return std::nullopt;
    const double value = numbersOf(node->value).front();
    const auto factor = unitFactor(Quantity::Length, textAttribute(*node, "units"));
    return value * factor.value_or(factorByMagnitude(value));
}

std::optional<std::string> NexusValues::text(const Paths& paths) const
{
    for (const std::string& path : paths)
        if (const Node* node = _tree.find(path))
            if (std::string text = textOf(node->value); !text.empty())
                return text;
    return std::nullopt;
}

Paths NexusValues::groups(const std::string& parent, const std::string& nxClass,
                          const std::string& prefix) const
{
    Paths found;
    const std::string start = parent + "/";
    for (auto node = _tree.nodes().lower_bound(start);
         node != _tree.nodes().end() && node->first.starts_with(start); ++node) {
        const std::string name = node->first.substr(start.size());
        if (name.empty() || name.find('/') != std::string::npos ||
            !std::holds_alternative<std::monostate>(node->second.value))
            continue;
        if (name.starts_with(prefix) || textAttribute(node->second, "NX_class") == nxClass)
            found.push_back(node->first);
    }
    return found;
}

}  // namespace morvend::imglib::hdf5
