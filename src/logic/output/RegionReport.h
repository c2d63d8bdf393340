// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The results of a region as text.
#pragma once

#include "logic/analysis/roi/RoiStatistics.h"
#include "logic/records/StatisticsData.h"

#include <QString>

namespace output {

/// The lines with which a report begins: the file, and the coordinates of a region that is active.
QString regionHead(const QString& path, const StatisticsData& region);

/// A plain text for files, the clipboard and panels: numbers, distances of reflections and the rows
/// of the curves, in which masked points are 0. All lines but those rows begin with '#'.
/// @param path  of the image, may be empty
QString regionReport(const QString& path, const StatisticsData& region,
                     const RoiStatistics& numbers);

}  // namespace output
