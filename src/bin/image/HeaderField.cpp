// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "bin/image/HeaderField.h"

#include <algorithm>
#include <array>

namespace tarvik::tool {

namespace {

using Values = HeaderField::Values;

constexpr std::array<HeaderField, 7> Fields{
    {{"rotation_angle", &Values::set_rotation_angle},
     {"rotation_angle_step", &Values::set_rotation_angle_step},
     {"beam_center_x", &Values::set_beam_center_x},
     {"beam_center_y", &Values::set_beam_center_y},
     {"wavelength", &Values::set_wavelength},
     {"detector_distance", &Values::set_detector_distance},
     {"filter_transmission", &Values::set_filter_transmission}}};

}  // namespace

const HeaderField* HeaderField::find(std::string_view name)
{
    const auto* const found = std::find_if(
        Fields.begin(), Fields.end(), [&](const HeaderField& each) { return each.name == name; });
    return found == Fields.end() ? nullptr : found;
}

std::string HeaderField::names()
{
    std::string names;
    for (const HeaderField& field : Fields)
        names += (names.empty() ? "" : ", ") + std::string(field.name);
    return names;
}

}  // namespace tarvik::tool
