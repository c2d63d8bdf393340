// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Access to the metadata tree and its rendering as text.
#include "imagelib/image/MBasicNeXusTree.h"

#include <sstream>

namespace morvend::nexus {

namespace {

constexpr std::size_t LongestShownArray = 16;

void print(std::ostream&, std::monostate) {}

template <class T>
void print(std::ostream& out, const T& value)
{
    out << value;
}

template <class T>
void print(std::ostream& out, const std::vector<T>& values)
{
    out << '[';
    for (std::size_t i = 0; i < values.size() && i < LongestShownArray; ++i)
        out << (i ? ", " : "") << values[i];
    if (values.size() > LongestShownArray)
        out << ", ... " << values.size() << " values";
    out << ']';
}

}  // namespace

const Node* MBasicNeXusTree::find(const std::string& path) const
{
    const auto found = _nodes.find(path);
    return found == _nodes.end() ? nullptr : &found->second;
}

void MBasicNeXusTree::setNumber(const std::string& path, double value, const std::string& units)
{
    Node& target = node(path);
    target.value = value;
    if (!units.empty())
        target.attributes["units"] = units;
}

void MBasicNeXusTree::setText(const std::string& path, const std::string& text)
{
    node(path).value = text;
}

std::string MBasicNeXusTree::toText() const
{
    std::ostringstream out;
    out.precision(9);
    for (const auto& [path, node] : _nodes) {
        if (std::holds_alternative<std::monostate>(node.value))
            continue;
        out << path << " = ";
        std::visit([&](const auto& value) { print(out, value); }, node.value);
        const auto units = node.attributes.find("units");
        if (units != node.attributes.end()) {
            out << ' ';
            std::visit([&](const auto& value) { print(out, value); }, units->second);
        }
        out << '\n';
    }
    return out.str();
}

}  // namespace morvend::nexus
