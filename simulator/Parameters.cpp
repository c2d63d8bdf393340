// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "simulator/Parameters.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace tarvik::simulator {
namespace {

constexpr double DeadTime = 2e-5;  // s
constexpr double LeastCountTime = 1e-6;
constexpr double LeastThreshold = 2700, MostThreshold = 18000;  // eV

struct Line {
    const char* element;
    double energy;  // eV, K alpha 1
};
constexpr Line Lines[] = {{"Ag", 22162.9}, {"Co", 6930.3}, {"Cr", 5414.7}, {"Cu", 8047.8},
                          {"Fe", 6403.8},  {"Ga", 9251.7}, {"Mn", 5898.8}, {"Mo", 17479.3},
                          {"Ni", 7478.2},  {"Ti", 4510.8}, {"Zn", 8638.9}};

Parameter reading(const QString& type, const QJsonValue& value)
{
    return {.type = type,
            .access = "r",
            .unit = {},
            .value = value,
            .min = {},
            .max = {},
            .allowed = {}};
}

Parameter boolean(bool value)
{
    return {.type = "bool",
            .access = "rw",
            .unit = {},
            .value = value,
            .min = {},
            .max = {},
            .allowed = {}};
}

Parameter limited(const QString& type, const QString& unit, double value, double min, double max)
{
    return {.type = type,
            .access = "rw",
            .unit = unit,
            .value = value,
            .min = min,
            .max = max,
            .allowed = {}};
}

Parameter choice(const QStringList& allowed)
{
    return {.type = "string",
            .access = "rw",
            .unit = {},
            .value = allowed.front(),
            .min = {},
            .max = {},
            .allowed = allowed};
}

bool typeFits(const QString& type, const QJsonValue& value)
{
    if (type == "bool")
        return value.isBool();
    if (type == "string")
        return value.isString();
    return value.isDouble() &&
           (type == "float" || value.toDouble() == std::floor(value.toDouble()));
}

}  // namespace

QJsonObject Parameter::described() const
{
    QJsonObject object{{"type", type}, {"access", access}, {"value", value}};
    if (!unit.isEmpty())
        object["unit"] = unit;
    if (min)
        object["min"] = *min;
    if (max)
        object["max"] = *max;
    if (!allowed.isEmpty())
        object["allowed"] = QJsonArray::fromStringList(allowed);
    return object;
}

std::optional<Refusal> Parameter::objection(const QString& name, const QJsonValue& wanted) const
{
    if (!access.contains('w'))
        return Refusal{405, "read_only", name + " can't be changed"};
    if (!typeFits(type, wanted))
        return Refusal{400, "bad_type", name + " must be of type " + type};
    if (min && (wanted.toDouble() < *min || wanted.toDouble() > *max))
        return Refusal{400, "out_of_range",
                       QString("%1 must be between %2 and %3 %4")
                           .arg(name)
                           .arg(*min)
                           .arg(*max)
                           .arg(unit)
                           .trimmed()};
    if (!allowed.isEmpty() && !allowed.contains(wanted.toString()))
        return Refusal{400, "not_allowed", name + " must be one of " + allowed.join(", ")};
    return {};
}

Parameters::Parameters(const QSize& frame)
{
    _addDetector(frame);
    _add("stream/version", reading("string", "1"));
    _add("stream/port", reading("int", 0));
    _add("stream/enabled", boolean(false));
    _add("stream/header_detail", choice({"basic", "none", "all"}));
    _add("stream/dropped", reading("int", 0));
    _add("monitor/enabled", boolean(false));
    _add("monitor/buffer_size", limited("int", {}, 10, 1, 1000));
    _add("monitor/dropped", reading("int", 0));
    _add("filewriter/enabled", boolean(true));
}

void Parameters::_addDetector(const QSize& frame)
{
    const auto add = [this](const char* name, Parameter parameter) {
        _add("detector/" + QString(name), std::move(parameter));
    };
    add("description",
        reading("string",
                QString("Simulated detector %1 x %2").arg(frame.width()).arg(frame.height())));
    add("detector_number", reading("string", "SIM-0001"));
    add("x_pixels_in_detector", reading("int", frame.width()));
    add("y_pixels_in_detector", reading("int", frame.height()));
    add("nimages", limited("int", {}, 1, 1, 1'000'000));
    add("frame_time", limited("float", "s", 0.1, 0.0005, 3600));
    add("count_time", limited("float", "s", 0.1 - DeadTime, LeastCountTime, 0.1 - DeadTime));
    add("photon_energy", limited("float", "eV", 8047.8, 3500, 36000));
    add("threshold_energy", limited("float", "eV", 4023.9, LeastThreshold, MostThreshold));
    QStringList elements{"Cu"};  // the first one is the value
    for (const Line& line : Lines)
        if (!elements.contains(line.element))
            elements << line.element;
    elements << "";
    add("element", choice(elements));
    add("trigger_mode", choice({"ints", "inte", "exts", "exte"}));
    for (const char* name : {"flatfield_correction_applied", "pixel_mask_applied", "auto_summation",
                             "countrate_correction_applied", "virtual_pixel_correction_applied"})
        add(name, boolean(true));
    add("countrate_correction_bunch_mode", choice({"continuous", "bunches"}));
    add("calibration_type", choice({"standard"}));
}

const Parameter* Parameters::find(const QString& path) const
{
    const auto found = _all.find(path);
    return found == _all.end() ? nullptr : &found->second;
}

QStringList Parameters::names(const QString& part) const
{
    QStringList names;
    for (const auto& [path, parameter] : _all)
        if (path.startsWith(part + '/'))
            names << path.mid(part.size() + 1);
    return names;
}

void Parameters::_limitCountTime()
{
    Parameter& countTime = _all["detector/count_time"];
    countTime.max = number("detector/frame_time") - DeadTime;
    countTime.value = std::min(countTime.value.toDouble(), *countTime.max);
}

void Parameters::_followEnergy()
{
    put("detector/threshold_energy",
        std::clamp(number("detector/photon_energy") / 2, LeastThreshold, MostThreshold));
}

/// Frames that begin one by one need time in between.
void Parameters::_followTrigger()
{
    if (!text("detector/trigger_mode").endsWith('e') || number("detector/frame_time") >= 0.1)
        return;
    put("detector/frame_time", 0.1);
    put("detector/count_time", 0.1);
}

void Parameters::_consequences(const QString& path)
{
    if (path == "detector/photon_energy") {
        put("detector/element", "");
        _followEnergy();
    } else if (path == "detector/element") {
        for (const Line& line : Lines)
            if (text(path) == line.element)
                put("detector/photon_energy", line.energy);
        _followEnergy();
    } else if (path == "detector/trigger_mode") {
        _followTrigger();
    }
    _limitCountTime();
}

std::optional<Refusal> Parameters::write(const QString& path, const QJsonValue& value,
                                         QStringList& changed)
{
    const auto found = _all.find(path);
    if (found == _all.end())
        return Refusal{404, "unknown", "there is no parameter " + path};
    const qsizetype slash = path.indexOf('/');
    if (auto refusal = found->second.objection(path.mid(slash + 1), value))
        return refusal;
    const auto before = _all;
    found->second.value = value;
    if (path.startsWith("detector/"))
        _consequences(path);
    for (const auto& [each, parameter] : _all)
        if (parameter.described() != before.at(each).described() || each == path)
            changed << each.mid(each.indexOf('/') + 1);
    return {};
}

}  // namespace tarvik::simulator
