// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Values of a metadata tree as numbers and texts.
#include "imagelib/io/formats/hdf5/nexus/NexusValues.h"

#include <sstream>

namespace morvend::imglib::hdf5 {

using nexus::Node;
using nexus::Value;

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
