// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The curve of a region over a series as text.
#pragma once

#include "logic/regionseries/RegionSeries.h"

#include <QString>

#include <string>
#include <vector>

/// The same columns for files and the shell. Lines that hold no numbers begin with '#'; an image
/// without numbers has "nan" in all columns but the first. An image that is missing has no line.
namespace seriesreport {

/// The titles of the columns, one line.
std::string columns(const StatisticsData& region);
/// The line of an image, with all digits.
std::string row(const StatisticsData& region, const SeriesPoint& point);
/// The coordinates of the region as a report has them, with the centre of a powder region.
QString head(const QString& path, const StatisticsData& region);
/// A file: head, images, failures, columns.
/// @param points  by rising numbers
QString text(const QString& path, const StatisticsData& region,
             const std::vector<SeriesPoint>& points, const RegionSeries::News& state);

}  // namespace seriesreport
