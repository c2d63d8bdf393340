// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Follows chains and reads their axes.
#include "imagelib/io/formats/hdf5/nexus/NexusAxes.h"

#include <algorithm>
#include <cmath>

namespace morvend::imglib::hdf5 {

using nexus::Node;

namespace {

constexpr std::size_t LongestChain = 100;

std::string parentOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

std::string absolute(const std::string& group, const std::string& path)
{
    if (path.starts_with('/'))
        return path;
    return group + "/" + (path.starts_with("./") ? path.substr(2) : path);
}

std::optional<double> medianDifference(const std::vector<double>& values)
{
    if (values.size() < 2)
        return std::nullopt;
    std::vector<double> steps(values.size() - 1);
    for (std::size_t i = 0; i < steps.size(); ++i)
        steps[i] = values[i + 1] - values[i];
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

bool differ(const std::vector<double>& values)
{
    return std::any_of(values.begin(), values.end(),
                       [&](double value) { return value != values.front(); });
}

}  // namespace

std::vector<NexusAxes::Axis> NexusAxes::_chain(const std::string& group) const
{
    std::vector<Axis> chain;
    const auto start = _values.text({group + "/depends_on"});
    if (!start)
        return chain;
    std::string path = absolute(group, *start);
    while (path != "." && chain.size() < LongestChain) {
        const Node* node = _values.tree().find(path);
        if (!node || numbersOf(node->value).empty())
            break;
        chain.push_back({path, node});
        const std::string next = textAttribute(*node, "depends_on");
        if (next.empty() || next == ".")
            break;
        path = absolute(parentOf(path), next);
    }
    return chain;
}

bool NexusAxes::_isRotation(const Axis& axis)
{
    const std::string type = textAttribute(*axis.node, "transformation_type");
    return type.empty() || type == "rotation";
}

double NexusAxes::_toDegrees(const Node& node)
{
    return unitFactor(Quantity::Angle, textAttribute(node, "units")).value_or(1);
}

std::optional<double> NexusAxes::_width(const Axis& axis, std::size_t frame) const
{
    const double factor = _toDegrees(*axis.node);
    const std::vector<double> values = numbersOf(axis.node->value);
    if (const Node* end = _values.firstNumbers({axis.path + "_end"})) {
        const std::vector<double> ends = numbersOf(end->value);
        const std::string units = textAttribute(*end, "units");
        const double endFactor = unitFactor(Quantity::Angle, units).value_or(factor);
        // A single end for all images is that of the scan.
        if (ends.size() == values.size())
            return endFactor * *ofFrame(ends, frame) - factor * *ofFrame(values, frame);
    }
    for (const char* suffix : {"_increment_set", "_range_average", "_increment"})
        if (const Node* width = _values.firstNumbers({axis.path + suffix})) {
            const std::string units = textAttribute(*width, "units");
            return unitFactor(Quantity::Angle, units).value_or(factor) *
                   *ofFrame(numbersOf(width->value), frame);
        }
    if (const auto step = medianDifference(values))
        return factor * *step;
    return std::nullopt;
}

std::vector<NexusAxes::Axis> NexusAxes::_named(const std::string& group) const
{
    std::vector<Axis> axes;
    for (const char* name : {"omega", "phi", "chi", "kappa", "rotation_angle"})
        if (const Node* node = _values.firstNumbers({group + name}))
            axes.push_back({group + name, node});
    return axes;
}

std::vector<NexusAxes::Axis> NexusAxes::_rotations(const std::string& entry) const
{
    const std::string sample = entry + "/sample";
    std::vector<Axis> axes = _chain(sample);
    for (const char* group : {"/goniometer/", "/transformations/", "/"})
        for (Axis& axis : _named(sample + group))
            axes.push_back(std::move(axis));
    std::erase_if(axes, [](const Axis& axis) { return !_isRotation(axis); });
    return axes;
}

std::optional<Rotation> NexusAxes::rotation(const std::string& entry, std::size_t frame,
                                            std::size_t frames) const
{
    const std::vector<Axis> axes = _rotations(entry);
    const auto first = [&](auto&& is) { return std::find_if(axes.begin(), axes.end(), is); };
    auto axis = first([&](const Axis& each) {
        const std::vector<double> values = numbersOf(each.node->value);
        return values.size() >= std::max<std::size_t>(frames, 2) && differ(values);
    });
    if (axis == axes.end())
        axis = first([](const Axis& each) { return differ(numbersOf(each.node->value)); });
    if (axis == axes.end())
        axis = first([&](const Axis& each) { return _width(each, frame).value_or(0) != 0; });
    if (axis == axes.end())  // without one that moves, omega stands for all
        axis = first([](const Axis& each) { return each.path.ends_with("/goniometer/omega"); });
    if (axis == axes.end())
        axis = axes.begin();
    if (axis == axes.end())
        return std::nullopt;
    const std::vector<double> values = numbersOf(axis->node->value);
    Rotation rotation{_toDegrees(*axis->node) * *ofFrame(values, frame), _width(*axis, frame)};
    // A start angle alone: the axis keeps turning by its width.
    if (values.size() == 1)
        rotation.start += rotation.step.value_or(0) * static_cast<double>(frame);
    return rotation;
}

std::optional<double> NexusAxes::distance(const std::string& detector) const
{
    double along = 0;
    bool any = false;
    for (const Axis& axis : _chain(detector)) {
        const std::string units = textAttribute(*axis.node, "units");
        const std::vector<double> offset = numbersAttribute(*axis.node, "offset");
        if (offset.size() == 3) {
            std::string offsetUnits = textAttribute(*axis.node, "offset_units");
            if (offsetUnits.empty())
                offsetUnits = units;
            along += offset[2] * unitFactor(Quantity::Length, offsetUnits).value_or(1);
            any = any || offset[2] != 0;
        }
        const std::vector<double> vector = numbersAttribute(*axis.node, "vector");
        if (vector.size() == 3 &&
            textAttribute(*axis.node, "transformation_type") == "translation") {
            along += numbersOf(axis.node->value).front() * vector[2] *
                     unitFactor(Quantity::Length, units).value_or(1);
            any = true;
        }
    }
    return any ? std::optional(std::abs(along)) : std::nullopt;
}

}  // namespace morvend::imglib::hdf5
