// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Four numbers to a region.
#include "bin/image/RegionWord.h"

#include "bin/image/NumberWord.h"

#include <array>
#include <numbers>

namespace tarvik::tool {

namespace {

std::array<std::string_view, 4> fourWords(std::string_view text, const std::string& option)
{
    std::array<std::string_view, 4> words;
    std::string_view rest = text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t comma = rest.find(',');
        if ((comma == std::string_view::npos) != (i + 1 == words.size()))
            throw UsageError(option + " needs four numbers: \"" + std::string(text) + '"');
        words[i] = rest.substr(0, comma);
        rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    }
    return words;
}

}  // namespace

StatisticsData regionOf(StatisticsData::RoiType type, const std::string& option,
                        const std::string& text)
{
    const auto words = fourWords(text, option);
    const auto coordinate = [&](std::size_t i) {
        return toNumber<int>(words[i], "A coordinate of " + option);
    };
    const auto radius = [&](std::size_t i) { return toCount(words[i], "A radius of " + option); };
    const auto real = [&](std::size_t i) { return toLevel(words[i], "A number of " + option); };
    StatisticsData region;
    region.defined = true;
    region.roiType = type;
    switch (type) {
    case StatisticsData::Circle:
        region.circleX = coordinate(0);
        region.circleY = coordinate(1);
        region.radius = radius(2);
        region.theta = real(3) * std::numbers::pi / 180;
        break;
    case StatisticsData::CentredCircle:
        region.powderX = real(0);
        region.powderY = real(1);
        region.innerRadius = radius(2);
        region.outerRadius = radius(3);
        break;
    default:
        region.beginX = coordinate(0);
        region.beginY = coordinate(1);
        region.endX = coordinate(2);
        region.endY = coordinate(3);
        break;
    }
    return region;
}

}  // namespace tarvik::tool
